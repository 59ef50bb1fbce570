// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/keyedarchive.h"
#include "platform/propertylistcheck.h"

#include <QCoreApplication>
#include <QHash>

#include <plist/plist.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::KeyedArchive)
};

using Lineage = std::vector<QLatin1StringView>;

/// Memory of the library.
using Freed = std::unique_ptr<void, decltype(&std::free)>;

const QLatin1StringView kClass("$class");
constexpr quint64 kArchiverVersion = 100'000;

plist_t newString(const QString &text)
{
    QString plain = text;
    plain.remove(QChar::Null);
    return plist_new_string(plain.toUtf8().constData());
}

plist_t newUid(KeyedArchiver::Reference reference)
{
    return plist_new_uid(static_cast<quint64>(reference));
}

/// Fractions of one as archives hold them: at most ten digits.
QByteArray componentText(double component)
{
    return QByteArray::number(component, 'g', 10);
}

/// A text that was read, as valid UTF-8: the library writes other bytes so that it cannot read them.
QByteArray writable(const char *text, uint64_t length)
{
    QString plain = QString::fromUtf8(text, static_cast<qsizetype>(length));
    plain.replace(QChar::Null, QChar::ReplacementCharacter);
    return plain.toUtf8();
}

/// Has its own memory.
plist_t copyOf(plist_t node, const std::function<KeyedArchiver::Reference(quint64 index)> &translated,
               qint64 &bytes)
{
    switch (plist_get_node_type(node)) {
    case PLIST_UID: {
        uint64_t index = 0;
        plist_get_uid_val(node, &index);
        return newUid(translated(index));
    }
    case PLIST_ARRAY: {
        const plist_t copy = plist_new_array();
        plist_array_iter iterator = nullptr;
        plist_array_new_iter(node, &iterator);
        const Freed freed(iterator, &std::free);
        plist_t item = nullptr;
        for (plist_array_next_item(node, iterator, &item); item; plist_array_next_item(node, iterator, &item))
            plist_array_append_item(copy, copyOf(item, translated, bytes));
        return copy;
    }
    case PLIST_DICT: {
        const plist_t copy = plist_new_dict();
        plist_dict_iter iterator = nullptr;
        plist_dict_new_iter(node, &iterator);
        const Freed freed(iterator, &std::free);
        for (;;) {
            char *key = nullptr;
            plist_t item = nullptr;
            plist_dict_next_item(node, iterator, &key, &item);
            const Freed freedKey(key, &std::free);
            if (!item)
                return copy;
            const QByteArray name = writable(key, std::strlen(key));
            // Of a key that is there twice, reading takes the first.
            if (!plist_dict_get_item(copy, name.constData()))
                plist_dict_set_item(copy, name.constData(), copyOf(item, translated, bytes));
        }
    }
    case PLIST_STRING: {
        uint64_t length = 0;
        const char *const text = plist_get_string_ptr(node, &length);
        return plist_new_string(writable(text, length).constData());
    }
    default: {
        uint64_t length = 0;
        if (plist_get_node_type(node) == PLIST_DATA)
            plist_get_data_ptr(node, &length);
        bytes += static_cast<qint64>(length);
        // Too large to be written: finish() fails, so the data are not copied.
        return bytes > kMaxPropertyListBytes ? plist_new_bool(0) : plist_copy(node);
    }
    }
}

} // namespace

KeyedArchiver::Object::Object()
    : m_dictionary(plist_new_dict())
{
}

KeyedArchiver::Object::~Object()
{
    plist_free(m_dictionary);
}

KeyedArchiver::Object::Object(Object &&other) noexcept
    : m_dictionary(std::exchange(other.m_dictionary, nullptr))
{
}

KeyedArchiver::Object &KeyedArchiver::Object::operator=(Object &&other) noexcept
{
    std::swap(m_dictionary, other.m_dictionary);
    return *this;
}

void KeyedArchiver::Object::setObject(QLatin1StringView key, Reference object)
{
    plist_dict_set_item(m_dictionary, key.data(), newUid(object));
}

void KeyedArchiver::Object::setBool(QLatin1StringView key, bool value)
{
    plist_dict_set_item(m_dictionary, key.data(), plist_new_bool(value ? 1 : 0));
}

void KeyedArchiver::Object::setFloat(QLatin1StringView key, float value)
{
    // The library writes four bytes for what four bytes hold.
    plist_dict_set_item(m_dictionary, key.data(), plist_new_real(static_cast<double>(value)));
}

void KeyedArchiver::Object::setInteger(QLatin1StringView key, qint64 value)
{
    plist_dict_set_item(m_dictionary, key.data(), plist_new_uint(static_cast<quint64>(value)));
}

void KeyedArchiver::Object::setBytes(QLatin1StringView key, const QByteArray &bytes)
{
    plist_dict_set_item(m_dictionary, key.data(),
                        plist_new_data(bytes.constData(), static_cast<quint64>(bytes.size())));
}

struct KeyedArchiver::State {
    plist_t objects = plist_new_array();
    quint32 count = 0;
    qint64 bytes = 0;
    QHash<QString, Reference> strings;
    QHash<qint64, Reference> integers;
    QHash<float, Reference> floats;
    QHash<quint64, Reference> colors; // by their sRGB numbers
    QHash<QLatin1StringView, Reference> classes;
    QHash<const void *, Reference> copies; // by the object that was copied
    std::vector<KeptObject> copied;        // keeps these from being replaced by others at their addresses

    ~State() { plist_free(objects); }
};

KeyedArchiver::KeyedArchiver()
    : m_state(std::make_unique<State>())
{
    append(plist_new_string("$null"));
}

KeyedArchiver::~KeyedArchiver() = default;

KeyedArchiver::Reference KeyedArchiver::append(void *node)
{
    plist_array_append_item(m_state->objects, node);
    return static_cast<Reference>(m_state->count++);
}

KeyedArchiver::Reference KeyedArchiver::addString(const QString &text)
{
    if (text.isNull())
        return Reference::None;
    // This text at this place means no object, so it cannot be written as it is.
    if (text == QLatin1StringView("$null")) {
        Object boxed;
        plist_dict_set_item(boxed.m_dictionary, "NS.string", newString(text));
        return addInstance(std::move(boxed), {QLatin1StringView("NSMutableString"),
                                              QLatin1StringView("NSString"), QLatin1StringView("NSObject")});
    }
    const auto known = m_state->strings.constFind(text);
    if (known != m_state->strings.cend())
        return *known;
    m_state->bytes += text.size();
    return *m_state->strings.insert(text, append(newString(text)));
}

KeyedArchiver::Reference KeyedArchiver::addInteger(qint64 number)
{
    const auto known = m_state->integers.constFind(number);
    if (known != m_state->integers.cend())
        return *known;
    return *m_state->integers.insert(number, append(plist_new_uint(static_cast<quint64>(number))));
}

KeyedArchiver::Reference KeyedArchiver::addFloat(float number)
{
    if (!std::isfinite(number))
        return Reference::None;
    const auto known = m_state->floats.constFind(number);
    if (known != m_state->floats.cend())
        return *known;
    return *m_state->floats.insert(number, append(plist_new_real(static_cast<double>(number))));
}

KeyedArchiver::Reference KeyedArchiver::addClass(const Lineage &lineage)
{
    const auto known = m_state->classes.constFind(lineage.front());
    if (known != m_state->classes.cend())
        return *known;
    const plist_t names = plist_new_array();
    for (const QLatin1StringView name : lineage)
        plist_array_append_item(names, plist_new_string(name.data()));
    const plist_t node = plist_new_dict();
    plist_dict_set_item(node, "$classname", plist_new_string(lineage.front().data()));
    plist_dict_set_item(node, "$classes", names);
    return *m_state->classes.insert(lineage.front(), append(node));
}

KeyedArchiver::Reference KeyedArchiver::addInstance(Object object, const Lineage &lineage)
{
    object.setObject(kClass, addClass(lineage));
    return append(std::exchange(object.m_dictionary, nullptr));
}

KeyedArchiver::Reference KeyedArchiver::addObject(Object object, QLatin1StringView className)
{
    return addInstance(std::move(object), {className, QLatin1StringView("NSObject")});
}

KeyedArchiver::Reference KeyedArchiver::addArray(const std::vector<Reference> &objects, Mutability mutability)
{
    const plist_t elements = plist_new_array();
    for (const Reference object : objects)
        plist_array_append_item(elements, newUid(object));
    Object array;
    plist_dict_set_item(array.m_dictionary, "NS.objects", elements);
    Lineage lineage{QLatin1StringView("NSArray"), QLatin1StringView("NSObject")};
    if (mutability == Mutability::Mutable)
        lineage.insert(lineage.begin(), QLatin1StringView("NSMutableArray"));
    return addInstance(std::move(array), lineage);
}

KeyedArchiver::Reference KeyedArchiver::addMutableData(const QByteArray &bytes)
{
    m_state->bytes += bytes.size();
    Object data;
    data.setBytes(QLatin1StringView("NS.data"), bytes);
    return addInstance(std::move(data), {QLatin1StringView("NSMutableData"), QLatin1StringView("NSData"),
                                         QLatin1StringView("NSObject")});
}

KeyedArchiver::Reference KeyedArchiver::addColor(const QColor &color)
{
    if (!color.isValid())
        return Reference::None;
    const QColor rgb = color.toRgb();
    Reference &known = m_state->colors[rgb.rgba64()];
    if (known != Reference::None)
        return known;
    QByteArray text;
    for (const int component : {rgb.rgba64().red(), rgb.rgba64().green(), rgb.rgba64().blue()})
        text += (text.isEmpty() ? "" : " ") + componentText(component / 65535.0);
    if (rgb.rgba64().alpha() != 65535)
        text += ' ' + componentText(rgb.rgba64().alpha() / 65535.0);
    Object object;
    object.setInteger(QLatin1StringView("NSColorSpace"), 1);
    object.setBytes(QLatin1StringView("NSRGB"), text + '\0');
    known = addInstance(std::move(object), {QLatin1StringView("NSColor"), QLatin1StringView("NSObject")});
    return known;
}

KeyedArchiver::Reference KeyedArchiver::addImage(const ArchivedImage &image)
{
    Object bitmap;
    bitmap.setObject(QLatin1StringView("NSTIFFRepresentation"), addMutableData(image.tiff));
    bitmap.setInteger(QLatin1StringView("NSInternalLayoutDirection"), 0);
    const Reference representation =
        addInstance(std::move(bitmap), {QLatin1StringView("NSBitmapImageRep"),
                                        QLatin1StringView("NSImageRep"), QLatin1StringView("NSObject")});
    const Reference pair = addArray({addInteger(0), representation}, Mutability::Immutable);

    Object background;
    background.setInteger(QLatin1StringView("NSColorSpace"), 3);
    background.setBytes(QLatin1StringView("NSWhite"), QByteArray("0 0\0", 4));
    const Reference clear =
        addInstance(std::move(background), {QLatin1StringView("NSColor"), QLatin1StringView("NSObject")});

    constexpr qint64 kFlagsOfBitmaps = 0x20c0'0000; // has representations and a size, is not drawn flipped
    Object object;
    object.setInteger(QLatin1StringView("NSImageFlags"), kFlagsOfBitmaps);
    object.setObject(QLatin1StringView("NSSize"),
                     addString(QStringLiteral("{%1, %2}").arg(image.size.width()).arg(image.size.height())));
    object.setObject(QLatin1StringView("NSReps"), addArray({pair}, Mutability::Mutable));
    object.setObject(QLatin1StringView("NSColor"), clear);
    object.setInteger(QLatin1StringView("NSResizingMode"), 0);
    if (!image.svg.isEmpty())
        object.setObject(QLatin1StringView("PlexaSVG"), addMutableData(image.svg));
    return addInstance(std::move(object), {QLatin1StringView("NSImage"), QLatin1StringView("NSObject")});
}

KeyedArchiver::Reference KeyedArchiver::addCopy(const KeptObject &object)
{
    if (object.isNone())
        return Reference::None;
    m_state->copied.push_back(object);
    // Objects get their numbers when they are met first, and stand in the archive in this order.
    std::vector<plist_t> met;
    const auto referenceOf = [&](plist_t node) {
        const auto known = m_state->copies.constFind(node);
        if (known != m_state->copies.cend())
            return *known;
        met.push_back(node);
        return *m_state->copies.insert(node, static_cast<Reference>(m_state->count + met.size() - 1));
    };
    const auto translated = [&](quint64 index) {
        const bool isObject = index > 0 && index < object.m_objects->size();
        return isObject ? referenceOf((*object.m_objects)[static_cast<std::size_t>(index)]) : Reference::None;
    };
    const Reference reference = referenceOf(object.m_node);
    std::vector<plist_t> copies;
    for (std::size_t i = 0; i < met.size(); ++i)
        copies.push_back(copyOf(met[i], translated, m_state->bytes));
    for (const plist_t copy : copies)
        append(copy);
    return reference;
}

Result<QByteArray> KeyedArchiver::finish()
{
    const auto tooLarge = [] {
        return fail(Texts::tr("it would be larger than %1 MB").arg(kMaxPropertyListBytes / 1'000'000));
    };
    if (m_state->bytes > kMaxPropertyListBytes)
        return tooLarge();
    const plist_t root = plist_new_dict();
    plist_dict_set_item(root, "$version", plist_new_uint(kArchiverVersion));
    plist_dict_set_item(root, "$archiver", plist_new_string("NSKeyedArchiver"));
    plist_dict_set_item(root, "$top", std::exchange(m_top.m_dictionary, nullptr));
    plist_dict_set_item(root, "$objects", std::exchange(m_state->objects, nullptr));
    char *written = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &written, &length);
    plist_free(root);
    if (!written)
        return fail(Texts::tr("there is not enough memory for it"));
    const QByteArray bytes(written, static_cast<qsizetype>(length));
    plist_to_bin_free(written);
    if (bytes.size() > kMaxPropertyListBytes)
        return tooLarge();
    // What cannot be read again must not take the place of a file that can.
    if (!faultOfPropertyList(bytes).isEmpty())
        return fail(Texts::tr("it would hold more than can be read again"));
    return bytes;
}

} // namespace plexa
