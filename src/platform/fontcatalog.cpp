// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"

#include "platform/fontnames.h"

#include <QHash>
#include <QRawFont>
#include <QSet>

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <deque>
#include <tuple>
#include <vector>

namespace plexa
{
namespace
{

using Pattern = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;
using ObjectSet = std::unique_ptr<FcObjectSet, decltype(&FcObjectSetDestroy)>;
using FontSet = std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)>;

/// A family name with the style's name in that family.
struct Naming {
    QString family;
    QString style;
};

struct InstalledFace {
    QString postScriptName; ///< under which the catalog knows it
    QString nameInFile;     ///< the same, unless the name went to another face that shares it
    QList<Naming> namings;  ///< at least one; the first is the one to show
    int weight = QFont::Normal;
    int width = FC_WIDTH_NORMAL;
    QFont::Style slant = QFont::StyleNormal;
    bool isInstance = false;   ///< one named style of a variable font
    bool isWholeRange = false; ///< a variable font as such, which has no style of its own
    int version = 0;

    /// The index of the request that makes Qt choose this face; -1: not tried yet. Every thread that tries
    /// comes to the same answer.
    mutable std::atomic<int> request{-1};
};

QString stringAt(const FcPattern *pattern, const char *object, int index)
{
    FcChar8 *text = nullptr;
    if (FcPatternGetString(pattern, object, index, &text) != FcResultMatch)
        return {};
    return QString::fromUtf8(reinterpret_cast<const char *>(text));
}

int integerAt(const FcPattern *pattern, const char *object, int fallback)
{
    int value = fallback;
    return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : fallback;
}

bool flagAt(const FcPattern *pattern, const char *object)
{
    FcBool value = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value == FcTrue;
}

QFont::Style slantOf(const FcPattern *pattern)
{
    switch (integerAt(pattern, FC_SLANT, FC_SLANT_ROMAN)) {
    case FC_SLANT_ITALIC:
        return QFont::StyleItalic;
    case FC_SLANT_OBLIQUE:
        return QFont::StyleOblique;
    default:
        return QFont::StyleNormal;
    }
}

void readFace(const FcPattern *pattern, InstalledFace &face)
{
    face.nameInFile = stringAt(pattern, FC_POSTSCRIPT_NAME, 0);
    face.postScriptName = face.nameInFile;
    const QString mainStyle = stringAt(pattern, FC_STYLE, 0);
    for (int i = 0;; ++i) {
        const QString family = stringAt(pattern, FC_FAMILY, i);
        if (family.isEmpty())
            break;
        const QString style = stringAt(pattern, FC_STYLE, i);
        face.namings.append({family, style.isEmpty() ? mainStyle : style});
    }
    double weight = FC_WEIGHT_NORMAL;
    FcPatternGetDouble(pattern, FC_WEIGHT, 0, &weight);
    const double openTypeWeight = FcWeightToOpenTypeDouble(weight);
    if (openTypeWeight >= 1)
        face.weight = static_cast<int>(std::lround(openTypeWeight));
    face.width = integerAt(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
    face.slant = slantOf(pattern);
    face.version = integerAt(pattern, FC_FONTVERSION, 0);
    face.isWholeRange = flagAt(pattern, FC_VARIABLE);
    // The upper half of the index numbers the named instances of a variable font.
    face.isInstance = integerAt(pattern, FC_INDEX, 0) >> 16 != 0;
}

/// All requests for a face, the likeliest first.
std::vector<QFont> requestsFor(const InstalledFace &face)
{
    std::vector<QFont> requests;
    for (const Naming &naming : face.namings) {
        QFont font(naming.family);
        font.setStyleName(naming.style);
        font.setWeight(static_cast<QFont::Weight>(face.weight));
        font.setStyle(face.slant);
        requests.push_back(font);
    }
    // Without a style's name Qt decides by the properties, which helps where faces share the name.
    QFont font(face.namings.first().family);
    font.setWeight(static_cast<QFont::Weight>(face.weight));
    font.setStyle(face.slant);
    font.setStretch(face.width);
    requests.push_back(font);
    for (QFont &request : requests)
        request.setHintingPreference(QFont::PreferNoHinting);
    return requests;
}

bool resolvesTo(const QFont &request, const InstalledFace &face)
{
    const QRawFont raw = QRawFont::fromFont(request);
    if (!raw.isValid())
        return false;
    // An instance has only the name of its file's first style inside; Qt reports which instance it took.
    if (face.isInstance || face.isWholeRange)
        return raw.familyName() == request.family() && raw.styleName() == request.styleName();
    const QStringList names = postScriptNames(raw.fontTable("name"));
    return names.isEmpty() || names.contains(face.nameInFile);
}

QFont fontFor(const InstalledFace &face)
{
    const std::vector<QFont> requests = requestsFor(face);
    int chosen = face.request.load(std::memory_order_relaxed);
    if (chosen < 0) {
        const auto found = std::find_if(requests.begin(), requests.end(),
                                        [&face](const QFont &request) { return resolvesTo(request, face); });
        chosen = found == requests.end() ? 0 : static_cast<int>(found - requests.begin());
        face.request.store(chosen, std::memory_order_relaxed);
    }
    return requests[static_cast<std::size_t>(chosen)];
}

/// Below the lower size the rounding of advances to 1/64 pixel would show; above the upper one, glyphs and
/// lines come near the limits of the text engine's 26.6 fixed-point numbers.
constexpr int kLeastLayoutSize = 24;
constexpr int kGreatestLayoutSize = 2000;
constexpr double kTinyPixelSize = 1.0 / 64;

SizedFont sized(QFont font, double pixelSize)
{
    const double wanted = std::isfinite(pixelSize) ? std::max(pixelSize, kTinyPixelSize) : kTinyPixelSize;
    const int layoutSize = static_cast<int>(
        std::ceil(std::clamp(wanted, double(kLeastLayoutSize), double(kGreatestLayoutSize))));
    font.setPixelSize(layoutSize);
    return {font, wanted / layoutSize};
}

/// The greater, the better a face's right to a PostScript name that several faces have.
auto nameClaim(const InstalledFace &face)
{
    return std::tuple(!face.isWholeRange, face.slant == QFont::StyleNormal,
                      -std::abs(face.weight - int(QFont::Normal)), face.width == FC_WIDTH_NORMAL,
                      face.version);
}

/// The installed face that a name in fontconfig's syntax resolves to; null without any.
Pattern matchOf(const char *name)
{
    const Pattern request(FcNameParse(reinterpret_cast<const FcChar8 *>(name)), &FcPatternDestroy);
    FcConfigSubstitute(nullptr, request.get(), FcMatchPattern);
    FcDefaultSubstitute(request.get());
    FcResult result = FcResultNoMatch;
    return {FcFontMatch(nullptr, request.get(), &result), &FcPatternDestroy};
}

QString styleKey(const InstalledFace &face)
{
    return face.namings.first().family + QLatin1Char('\n') + face.namings.first().style;
}

bool isSameText(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

struct FontCatalog::Data {
    Data();

    const InstalledFace *named(const QString &postScriptName) const
    {
        return byName.value(postScriptName, nullptr);
    }

    std::deque<InstalledFace> faces; // a deque because an atomic cannot be moved
    QHash<QString, const InstalledFace *> byName;
    QString defaultName;
    QString emojiName; ///< empty: no such font

private:
    void loadFaces();
    void nameTheNameless();
    void chooseDefault();
    void chooseEmoji();
};

FontCatalog::Data::Data()
{
    loadFaces();
    for (const InstalledFace &face : faces) {
        const InstalledFace *&best = byName[face.postScriptName];
        if (!best || nameClaim(face) > nameClaim(*best))
            best = &face;
    }
    nameTheNameless();
    chooseDefault();
    chooseEmoji();
}

/// The styles of a variable font may all have one PostScript name. The plainest of them keeps it; the others
/// get the name that such a font usually has, so that each style can be chosen and found again.
void FontCatalog::Data::nameTheNameless()
{
    QSet<QString> reachable;
    for (const InstalledFace *face : std::as_const(byName))
        reachable.insert(styleKey(*face));
    QHash<QString, InstalledFace *> unreachable;
    for (InstalledFace &face : faces) {
        if (face.isWholeRange || reachable.contains(styleKey(face)))
            continue;
        InstalledFace *&best = unreachable[styleKey(face)];
        if (!best || nameClaim(face) > nameClaim(*best))
            best = &face;
    }
    for (InstalledFace *face : std::as_const(unreachable)) {
        const Naming &naming = face->namings.first();
        QString name = naming.family + QLatin1Char('-') + naming.style;
        name.remove(QLatin1Char(' '));
        if (!byName.contains(name)) {
            face->postScriptName = name;
            byName.insert(name, face);
        }
    }
}

void FontCatalog::Data::loadFaces()
{
    const Pattern all(FcPatternCreate(), &FcPatternDestroy);
    // Asking for the languages of the names too puts the names into the order in which Qt sees them.
    const ObjectSet wanted(FcObjectSetBuild(FC_POSTSCRIPT_NAME, FC_FAMILY, FC_FAMILYLANG, FC_STYLE,
                                            FC_STYLELANG, FC_WEIGHT, FC_SLANT, FC_WIDTH, FC_INDEX,
                                            FC_FONTVERSION, FC_VARIABLE, FC_SCALABLE, nullptr),
                           &FcObjectSetDestroy);
    const FontSet listed(FcFontList(nullptr, all.get(), wanted.get()), &FcFontSetDestroy);
    if (!listed)
        return;
    for (int i = 0; i < listed->nfont; ++i) {
        if (!flagAt(listed->fonts[i], FC_SCALABLE))
            continue;
        readFace(listed->fonts[i], faces.emplace_back());
        if (faces.back().postScriptName.isEmpty() || faces.back().namings.isEmpty())
            faces.pop_back();
    }
}

void FontCatalog::Data::chooseDefault()
{
    defaultName = stringAt(matchOf("sans-serif:scalable=true").get(), FC_POSTSCRIPT_NAME, 0);
    if (!byName.contains(defaultName))
        defaultName = faces.empty() ? QString() : faces.front().postScriptName;
}

void FontCatalog::Data::chooseEmoji()
{
    const Pattern match = matchOf("emoji:color=true");
    const QString name = stringAt(match.get(), FC_POSTSCRIPT_NAME, 0);
    if (flagAt(match.get(), FC_COLOR) && byName.contains(name))
        emojiName = name;
}

FontCatalog::FontCatalog()
    : m_data(std::make_unique<const Data>())
{
}

FontCatalog::~FontCatalog() = default;

std::optional<SizedFont> FontCatalog::fontNamed(const QString &postScriptName, double pixelSize) const
{
    const InstalledFace *face = m_data->named(postScriptName);
    if (!face)
        return std::nullopt;
    return sized(fontFor(*face), pixelSize);
}

SizedFont FontCatalog::defaultFont(double pixelSize) const
{
    if (auto font = fontNamed(m_data->defaultName, pixelSize))
        return *font;
    QFont font;
    font.setStyleHint(QFont::SansSerif);
    font.setHintingPreference(QFont::PreferNoHinting);
    return sized(font, pixelSize);
}

std::optional<SizedFont> FontCatalog::emojiFont(double pixelSize) const
{
    return fontNamed(m_data->emojiName, pixelSize);
}

QString FontCatalog::defaultFontName() const
{
    return m_data->defaultName;
}

QString FontCatalog::postScriptName(const QString &family, const QString &style) const
{
    // A family's main name wins over the same text as another family's second name.
    QString bySecondName;
    for (const InstalledFace *face : m_data->byName) {
        for (const Naming &naming : face->namings) {
            if (!isSameText(naming.family, family) || !isSameText(naming.style, style))
                continue;
            if (&naming == &face->namings.first())
                return face->postScriptName;
            bySecondName = face->postScriptName;
        }
    }
    return bySecondName;
}

QStringList FontCatalog::postScriptNames() const
{
    QStringList names = m_data->byName.keys();
    names.sort();
    return names;
}

QStringList FontCatalog::families() const
{
    QStringList families;
    for (const InstalledFace *face : m_data->byName)
        families.append(face->namings.first().family);
    const auto order = [](const QString &a, const QString &b) {
        const int byLetters = QString::localeAwareCompare(a.toCaseFolded(), b.toCaseFolded());
        return byLetters != 0 ? byLetters < 0 : a < b;
    };
    std::sort(families.begin(), families.end(), order);
    families.removeDuplicates();
    return families;
}

QStringList FontCatalog::styles(const QString &family) const
{
    std::vector<const InstalledFace *> members;
    for (const InstalledFace *face : m_data->byName) {
        if (isSameText(face->namings.first().family, family))
            members.push_back(face);
    }
    const auto rank = [](const InstalledFace *face) {
        return std::tuple(face->width != FC_WIDTH_NORMAL, face->width, face->weight, face->slant,
                          face->namings.first().style);
    };
    std::sort(members.begin(), members.end(),
              [rank](const InstalledFace *a, const InstalledFace *b) { return rank(a) < rank(b); });
    QStringList styles;
    for (const InstalledFace *face : members)
        styles.append(face->namings.first().style);
    styles.removeDuplicates();
    return styles;
}

FontCatalog::Face FontCatalog::face(const QString &postScriptName) const
{
    const InstalledFace *face = m_data->named(postScriptName);
    return face ? Face{face->namings.first().family, face->namings.first().style} : Face{};
}

} // namespace plexa
