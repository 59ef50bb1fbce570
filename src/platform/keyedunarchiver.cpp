// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/keyedarchive.h"
#include "platform/propertylistcheck.h"
#include "platform/xmlpropertylist.h"

#include <QCoreApplication>
#include <QHash>

#include <plist/plist.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::KeyedArchive)
};

// The most that is read of an archive in total. Elements and data are counted at each reading, because many
// objects may refer to one; a text once, because all readings share its memory.
constexpr qint64 kMaxElements = 1'000'000;
constexpr qint64 kMaxBytes = kMaxPropertyListBytes + kMaxPropertyListBytes / 4;
constexpr int kMaxRepresentations = 64;
constexpr uint32_t kMaxLineage = 16;
constexpr int kMaxColorDepth = 4; // a catalog color holds its fallback

/// How archived colors number their spaces.
enum ColorSpace {
    kCalibratedRgb = 1,
    kDeviceRgb = 2,
    kCalibratedWhite = 3,
    kDeviceWhite = 4,
    kDeviceCmyk = 5,
    kNamed = 6,
};

/// The number of the named space sRGB.
constexpr qint64 kSpaceIdOfSrgb = 7;

/// An iterator of the library, which is plain memory.
struct Freed {
    void operator()(void *memory) const { std::free(memory); }
};
using Iterator = std::unique_ptr<void, Freed>;

template<class Visit>
void forEachElement(plist_t array, const Visit &visit)
{
    plist_array_iter raw = nullptr;
    plist_array_new_iter(array, &raw);
    const Iterator iterator(raw);
    for (;;) {
        plist_t item = nullptr;
        plist_array_next_item(array, iterator.get(), &item);
        if (!item)
            return;
        visit(item);
    }
}

/// As it lies in the archive, UTF-8; empty when it is no text.
QByteArrayView textOf(plist_t node)
{
    uint64_t length = 0;
    const char *const text =
        plist_get_node_type(node) == PLIST_STRING ? plist_get_string_ptr(node, &length) : nullptr;
    return text ? QByteArrayView(text, static_cast<qsizetype>(length)) : QByteArrayView("");
}

/// Without measuring the text, which may be long.
/// @param text  ends with a null character
bool isText(plist_t node, QLatin1StringView text)
{
    return plist_get_node_type(node) == PLIST_STRING && plist_string_val_compare(node, text.data()) == 0;
}

QColor colorOf(double red, double green, double blue, double alpha)
{
    const auto bounded = [](double component) { return static_cast<float>(std::clamp(component, 0.0, 1.0)); };
    return QColor::fromRgbF(bounded(red), bounded(green), bounded(blue), bounded(alpha));
}

} // namespace

struct ArchivedValue::Archive {
    plist_t root = nullptr;
    std::vector<plist_t> objects;
    qint64 elementsLeft = kMaxElements;
    qint64 bytesLeft = kMaxBytes;
    bool isExhausted = false;
    QHash<const void *, QString> texts; ///< that were read, by their nodes

    /// Takes from one of the two; false when there is not so much left.
    bool take(qint64 &left, qint64 count)
    {
        isExhausted = isExhausted || count > left;
        if (isExhausted)
            return false;
        left -= count;
        return true;
    }

    Archive() = default;
    Archive(const Archive &) = delete;
    Archive &operator=(const Archive &) = delete;
    ~Archive() { plist_free(root); }
};

ArchivedValue::ArchivedValue(std::shared_ptr<Archive> archive, void *node)
    : m_archive(std::move(archive))
    , m_node(node)
{
}

Result<ArchivedValue> ArchivedValue::readArchive(const QByteArray &bytes)
{
    const auto archive = std::make_shared<Archive>();
    if (isXmlPropertyList(bytes)) {
        const Result<void *> root = propertyListFromXml(bytes);
        if (!root)
            return tl::unexpected(root.error());
        archive->root = *root;
    } else {
        const QString fault = faultOfPropertyList(bytes);
        if (!fault.isEmpty())
            return fail(fault);
        plist_from_bin(bytes.constData(), static_cast<uint32_t>(bytes.size()), &archive->root);
    }
    const auto member = [&](const char *key, plist_type type) -> plist_t {
        if (!archive->root || plist_get_node_type(archive->root) != PLIST_DICT)
            return nullptr;
        const plist_t node = plist_dict_get_item(archive->root, key);
        return node && plist_get_node_type(node) == type ? node : nullptr;
    };
    const plist_t archiver = member("$archiver", PLIST_STRING);
    const plist_t objects = member("$objects", PLIST_ARRAY);
    const plist_t top = member("$top", PLIST_DICT);
    if (!archiver || !isText(archiver, QLatin1StringView("NSKeyedArchiver")) || !objects || !top)
        return fail(Texts::tr("it is no archive of objects"));
    archive->objects.reserve(plist_array_get_size(objects));
    forEachElement(objects, [&](plist_t object) { archive->objects.push_back(object); });
    return ArchivedValue(archive, top);
}

bool ArchivedValue::isNode(int type) const
{
    return m_node && plist_get_node_type(m_node) == type;
}

ArchivedValue ArchivedValue::resolved(void *node) const
{
    if (!node)
        return {};
    if (plist_get_node_type(node) != PLIST_UID)
        return {m_archive, node};
    uint64_t index = 0;
    plist_get_uid_val(node, &index);
    if (index == 0)
        return {};
    ArchivedValue missing;
    missing.m_isMissing = true;
    if (index >= m_archive->objects.size())
        return missing;
    void *const object = m_archive->objects[index];
    const plist_type type = plist_get_node_type(object);
    if (type == PLIST_UID) // a reference to a reference never is
        return missing;
    if (isText(object, QLatin1StringView("$null")))
        return {};
    return {m_archive, object};
}

ArchivedValue ArchivedValue::value(QLatin1StringView key) const
{
    return isNode(PLIST_DICT) ? resolved(plist_dict_get_item(m_node, key.data())) : ArchivedValue();
}

std::vector<QByteArray> ArchivedValue::keys() const
{
    std::vector<QByteArray> keys;
    if (!isNode(PLIST_DICT))
        return keys;
    plist_dict_iter start = nullptr;
    plist_dict_new_iter(m_node, &start);
    const std::unique_ptr<void, decltype(&std::free)> iterator(start, &std::free);
    while (true) {
        char *key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(m_node, iterator.get(), &key, &item);
        const std::unique_ptr<char, decltype(&std::free)> owner(key, &std::free);
        if (!item)
            return keys;
        keys.emplace_back(key);
    }
}

bool ArchivedValue::isOfClass(QLatin1StringView className) const
{
    const ArchivedValue type = value(QLatin1StringView("$class"));
    if (!type.isNode(PLIST_DICT))
        return false;
    // Looked for as it is: asking a name for its class would not end.
    const ArchivedValue name = type.value(QLatin1StringView("$classname"));
    if (name.isNode(PLIST_STRING) && isText(name.m_node, className))
        return true;
    const ArchivedValue lineage = type.value(QLatin1StringView("$classes"));
    if (!lineage.isNode(PLIST_ARRAY))
        return false;
    const uint32_t count = std::min(plist_array_get_size(lineage.m_node), kMaxLineage);
    for (uint32_t i = 0; i < count; ++i) {
        if (isText(plist_array_get_item(lineage.m_node, i), className))
            return true;
    }
    return false;
}

std::optional<QString> ArchivedValue::string() const
{
    if (isNode(PLIST_STRING)) {
        const auto known = m_archive->texts.constFind(m_node); // first: the library measures a text each time
        return known != m_archive->texts.cend() ? *known : sharedText(textOf(m_node));
    }
    if (!isOfClass(QLatin1StringView("NSString")))
        return std::nullopt;
    const ArchivedValue boxed = value(QLatin1StringView("NS.string"));
    if (boxed.isNode(PLIST_STRING))
        return boxed.string();
    const ArchivedValue bytes = value(QLatin1StringView("NS.bytes"));
    if (!bytes.isNode(PLIST_DATA))
        return std::nullopt;
    uint64_t length = 0;
    const char *const utf8 = plist_get_data_ptr(bytes.m_node, &length);
    return bytes.sharedText(utf8 ? QByteArrayView(utf8, static_cast<qsizetype>(length)) : "");
}

/// @param utf8  of this node
std::optional<QString> ArchivedValue::sharedText(QByteArrayView utf8) const
{
    const auto known = m_archive->texts.constFind(m_node);
    if (known != m_archive->texts.cend())
        return *known;
    if (!m_archive->take(m_archive->bytesLeft, utf8.size()))
        return std::nullopt;
    return *m_archive->texts.insert(m_node, QString::fromUtf8(utf8));
}

/// Of an object that holds a number plainly: the number.
ArchivedValue ArchivedValue::unboxedNumber() const
{
    if (!isOfClass(QLatin1StringView("NSNumber")))
        return {};
    for (const char *key : {"NS.intval", "NS.dblval", "NS.boolval"}) {
        const ArchivedValue plain = value(QLatin1StringView(key));
        if (plain.isNode(PLIST_UINT) || plain.isNode(PLIST_REAL) || plain.isNode(PLIST_BOOLEAN))
            return plain;
    }
    return {};
}

std::optional<double> ArchivedValue::number() const
{
    if (isNode(PLIST_DICT))
        return unboxedNumber().number();
    double number = 0;
    if (isNode(PLIST_REAL))
        plist_get_real_val(m_node, &number);
    else if (const std::optional<qint64> whole = integer())
        number = static_cast<double>(*whole);
    else
        return std::nullopt;
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<qint64> ArchivedValue::integer() const
{
    if (isNode(PLIST_DICT))
        return unboxedNumber().integer();
    if (isNode(PLIST_BOOLEAN)) {
        uint8_t value = 0;
        plist_get_bool_val(m_node, &value);
        return value ? 1 : 0;
    }
    if (isNode(PLIST_UINT)) {
        uint64_t value = 0;
        plist_get_uint_val(m_node, &value);
        return static_cast<qint64>(value); // negative numbers come so from the library
    }
    if (isNode(PLIST_REAL)) {
        double value = 0;
        plist_get_real_val(m_node, &value);
        constexpr double kLimit = 9.2e18;
        return std::abs(value) < kLimit ? std::optional(static_cast<qint64>(value)) : std::nullopt;
    }
    return std::nullopt;
}

bool ArchivedValue::boolean() const
{
    return number().value_or(0) != 0;
}

std::optional<QByteArrayView> ArchivedValue::dataView() const
{
    if (isNode(PLIST_DATA)) {
        uint64_t length = 0;
        const char *const bytes = plist_get_data_ptr(m_node, &length);
        const auto size = static_cast<qint64>(length);
        return m_archive->take(m_archive->bytesLeft, size) ? std::optional(QByteArrayView(bytes, size))
                                                           : std::nullopt;
    }
    if (!isOfClass(QLatin1StringView("NSData")))
        return std::nullopt;
    const ArchivedValue boxed = value(QLatin1StringView("NS.data"));
    return boxed.isNode(PLIST_DATA) ? boxed.dataView() : std::nullopt;
}

std::optional<QByteArray> ArchivedValue::data() const
{
    const std::optional<QByteArrayView> bytes = dataView();
    return bytes ? std::optional(bytes->toByteArray()) : std::nullopt;
}

std::optional<std::vector<ArchivedValue>> ArchivedValue::array() const
{
    if (!isOfClass(QLatin1StringView("NSArray")))
        return std::nullopt;
    const ArchivedValue objects = value(QLatin1StringView("NS.objects"));
    if (!objects.isNode(PLIST_ARRAY))
        return std::nullopt;
    const qint64 size = plist_array_get_size(objects.m_node);
    if (!m_archive->take(m_archive->elementsLeft, size))
        return std::nullopt;
    std::vector<ArchivedValue> elements;
    elements.reserve(static_cast<std::size_t>(size));
    forEachElement(objects.m_node, [&](plist_t node) { elements.push_back(resolved(node)); });
    return elements;
}

bool ArchivedValue::isExhausted() const
{
    return m_archive && m_archive->isExhausted;
}

std::optional<std::vector<double>> ArchivedValue::components(QLatin1StringView key) const
{
    std::optional<QByteArray> text = value(key).data();
    if (!text || text->size() > 1000)
        return std::nullopt;
    text->truncate(static_cast<qsizetype>(std::strlen(text->constData())));
    std::vector<double> numbers;
    for (const QByteArray &part : text->simplified().split(' ')) {
        bool isNumber = false;
        const double number = part.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(number))
            return std::nullopt;
        numbers.push_back(number);
    }
    return numbers;
}

QColor ArchivedValue::rgbColor() const
{
    std::optional<std::vector<double>> rgb;
    // The numbers in a space of its own stand beside those in calibrated RGB.
    const ArchivedValue space = value(QLatin1StringView("NSCustomColorSpace"));
    if (space.value(QLatin1StringView("NSID")).integer() == kSpaceIdOfSrgb)
        rgb = components(QLatin1StringView("NSComponents"));
    if (!rgb || rgb->size() < 3)
        rgb = components(QLatin1StringView("NSRGB"));
    if (!rgb || rgb->size() < 3)
        return {};
    return colorOf((*rgb)[0], (*rgb)[1], (*rgb)[2], rgb->size() > 3 ? (*rgb)[3] : 1);
}

QColor ArchivedValue::colorAtDepth(int depth) const
{
    if (depth > kMaxColorDepth || !isOfClass(QLatin1StringView("NSColor")))
        return {};
    switch (value(QLatin1StringView("NSColorSpace")).integer().value_or(0)) {
    case kCalibratedRgb:
    case kDeviceRgb:
        return rgbColor();
    case kCalibratedWhite:
    case kDeviceWhite: {
        const auto white = components(QLatin1StringView("NSWhite"));
        if (!white || white->empty())
            return {};
        return colorOf((*white)[0], (*white)[0], (*white)[0], white->size() > 1 ? (*white)[1] : 1);
    }
    case kDeviceCmyk: {
        const auto cmyk = components(QLatin1StringView("NSCMYK"));
        if (!cmyk || cmyk->size() < 4)
            return {};
        const double light = 1 - std::clamp((*cmyk)[3], 0.0, 1.0);
        const auto channel = [light](double ink) { return (1 - std::clamp(ink, 0.0, 1.0)) * light; };
        return colorOf(channel((*cmyk)[0]), channel((*cmyk)[1]), channel((*cmyk)[2]),
                       cmyk->size() > 4 ? (*cmyk)[4] : 1);
    }
    case kNamed:
        return value(QLatin1StringView("NSColor")).colorAtDepth(depth + 1);
    default:
        return {};
    }
}

QColor ArchivedValue::color() const
{
    return colorAtDepth(0);
}

ImageRepresentations ArchivedValue::imageRepresentations() const
{
    ImageRepresentations representations;
    if (!isOfClass(QLatin1StringView("NSImage")))
        return representations;
    const auto pairs = value(QLatin1StringView("NSReps")).array();
    for (const ArchivedValue &pair : pairs.value_or(std::vector<ArchivedValue>())) {
        for (const ArchivedValue &half : pair.array().value_or(std::vector<ArchivedValue>())) {
            if (representations.bitmaps.size() >= kMaxRepresentations ||
                !half.isOfClass(QLatin1StringView("NSBitmapImageRep")))
                continue;
            if (const auto tiff = half.value(QLatin1StringView("NSTIFFRepresentation")).dataView())
                representations.bitmaps.append(*tiff);
        }
    }
    if (const auto svg = value(QLatin1StringView("PlexaSVG")).dataView())
        representations.svg = *svg;
    return representations;
}

KeptObject ArchivedValue::kept() const
{
    KeptObject object;
    if (m_node) {
        object.m_objects = {m_archive, &m_archive->objects};
        object.m_node = m_node;
    }
    return object;
}

} // namespace plexa
