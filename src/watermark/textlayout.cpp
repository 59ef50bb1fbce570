// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/textlayout.h"

#include "platform/emojisequences.h"
#include "platform/fontcatalog.h"

#include <QCoreApplication>
#include <QHash>
#include <QPainter>
#include <QRawFont>
#include <QTextLayout>
#include <QTransform>

#include <algorithm>
#include <limits>
#include <mutex>
#include <utility>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::TextWatermark)
};

/// Texts are set at this many pixels an em, without hinting, and scaled: the text engine's rounding to
/// fractions of a pixel vanishes, and its caches serve photos of every size.
constexpr int kEm = 1000;

/// The text engine counts in 64ths of a pixel, in 32 bits.
constexpr double kMaxFrameWidth = 16'000'000;

QFont fontOf(const FontCatalog &fonts, const QString &name)
{
    const std::optional<SizedFont> named = fonts.fontNamed(name, kEm);
    QFont font = named ? named->font : fonts.defaultFont(kEm).font;
    font.setPixelSize(kEm);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

struct LineMetrics {
    double ascent = 0;
    double descent = 0;
    double leading = 0;

    double height() const { return ascent + descent + leading; }

    void include(const QRawFont &font)
    {
        const double scale = font.pixelSize() > 0 ? kEm / font.pixelSize() : 0;
        ascent = std::max(ascent, font.ascent() * scale);
        descent = std::max(descent, font.descent() * scale);
        leading = std::max(leading, font.leading() * scale);
    }
};

/// The character at a position, as UTF-32.
char32_t characterAt(const QString &text, qsizetype at)
{
    const bool isPair = at + 1 < text.size() && text.at(at).isHighSurrogate();
    return isPair ? QChar::surrogateToUcs4(text.at(at), text.at(at + 1)) : text.at(at).unicode();
}

/// A text as the text engine sets it.
struct PreparedText {
    QString text; ///< with the engine's line breaks, without other control characters
    QList<QTextLayout::FormatRange> emoji; ///< in the font of emoji
};

/// Prepares a text, piece by piece.
class TextPreparation
{
public:
    explicit TextPreparation(QString text)
        : m_text(std::move(text))
    {
    }

    PreparedText prepared(const QFont &font, const FontCatalog &fonts)
    {
        const std::vector<EmojiSequence> sequences = emojiSequencesIn(m_text);
        const auto emoji = sequences.empty() ? std::nullopt : fonts.emojiFont(kEm);
        if (emoji)
            addEmoji(sequences, font, emoji->font);
        addText(m_text.size());
        return m_prepared;
    }

private:
    void addEmoji(const std::vector<EmojiSequence> &sequences, const QFont &font, QFont emoji)
    {
        QTextCharFormat format;
        emoji.setPixelSize(kEm);
        // A sequence is one glyph only if no part of it is in another font.
        emoji.setStyleStrategy(QFont::NoFontMerging);
        format.setFont(emoji);
        const QRawFont ofEmoji = QRawFont::fromFont(emoji);
        const QRawFont ofText = QRawFont::fromFont(font);
        for (const EmojiSequence &sequence : sequences) {
            const uint base = characterAt(m_text, sequence.at);
            if (!ofEmoji.supportsCharacter(base) || (!sequence.isExplicit && ofText.supportsCharacter(base)))
                continue;
            addText(sequence.at);
            m_prepared.emoji.append(
                {static_cast<int>(m_prepared.text.size()), static_cast<int>(sequence.length), format});
            m_prepared.text += QStringView(m_text).mid(sequence.at, sequence.length);
            m_at = sequence.at + sequence.length;
        }
    }

    /// Variation selectors go: the engine shows them as boxes where the font does not know them.
    void addText(qsizetype end)
    {
        for (; m_at < end; ++m_at) {
            const QChar c = m_text.at(m_at);
            const bool isBreak = c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f' || c == QChar(0x85) ||
                                 c == QChar::ParagraphSeparator || c == QChar::LineSeparator;
            if (c == u'\r' && m_at + 1 < m_text.size() && m_text.at(m_at + 1) == u'\n')
                continue;
            if (c == QChar(0xfe0f) || c == QChar(0xfe0e))
                continue;
            if (isBreak)
                m_prepared.text += QChar(QChar::LineSeparator);
            else if (c == u'\t' || c.category() != QChar::Other_Control)
                m_prepared.text += c;
        }
    }

    const QString m_text;
    qsizetype m_at = 0; // before it the text is prepared
    PreparedText m_prepared;
};

/// Whether this is what a run has without a font for its script: boxes, which have no tables and no descent.
/// Type 1 fonts have no tables either.
bool isFontOfBoxes(const QRawFont &font)
{
    return font.fontTable("head").isEmpty() && font.descent() <= 0;
}

/// The visible characters of a finished layout without a glyph, each once.
QString missingIn(const QTextLayout &layout)
{
    const auto lacksGlyph = [&layout](int from, int length) {
        const QList<QGlyphRun> runs = layout.glyphRuns(from, length);
        return std::any_of(runs.begin(), runs.end(), [](const QGlyphRun &run) {
            return run.glyphIndexes().contains(0U) || isFontOfBoxes(run.rawFont());
        });
    };
    QString missing;
    const QString text = layout.text();
    if (!lacksGlyph(0, static_cast<int>(text.size())))
        return missing;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char32_t character = characterAt(text, at);
        const QString piece = QString::fromUcs4(&character, 1);
        const bool isKnown = missing.contains(piece) || text.indexOf(piece) < at;
        // Joiners and the like are never drawn.
        const bool isVisible =
            !QChar::isSpace(character) && QChar::category(character) != QChar::Other_Format;
        if (isVisible && !isKnown && lacksGlyph(static_cast<int>(at), 1))
            missing += piece;
        at += piece.size() - 1;
    }
    return missing;
}

QTextOption optionsFor(TextAlignment alignment)
{
    QTextOption options;
    options.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    options.setUseDesignMetrics(true);
    options.setTabStopDistance(4 * kEm);
    constexpr Qt::Alignment kAlignments[] = {Qt::AlignLeft | Qt::AlignAbsolute, Qt::AlignHCenter,
                                             Qt::AlignRight | Qt::AlignAbsolute};
    options.setAlignment(kAlignments[static_cast<std::size_t>(alignment)]);
    return options;
}

/// Gathers the glyphs of lines, one below the other.
class GlyphGatherer
{
public:
    explicit GlyphGatherer(const QRawFont &font) { m_ofFont.include(font); }

    void addLine(const QTextLine &line)
    {
        const QList<QGlyphRun> runs = line.glyphRuns();
        LineMetrics metrics = m_ofFont;
        for (const QGlyphRun &run : runs)
            metrics.include(run.rawFont());
        // Runs are placed relative to the line's own top.
        const double down = m_top + metrics.ascent - line.ascent() - line.y();
        for (const QGlyphRun &run : runs)
            addRun(run, QPointF(0, down));
        m_top += metrics.height();
    }

    TextSetting setting(const QString &missing) &&
    {
        m_setting.missing = missing;
        m_setting.height = m_top / kEm;
        return std::move(m_setting);
    }

private:
    struct KnownFont {
        bool isPictures = false;
        QHash<quint32, std::size_t> shapes; ///< by glyph index; kNoShape: invisible
    };
    static constexpr std::size_t kNoShape = std::numeric_limits<std::size_t>::max();

    KnownFont &known(const QRawFont &font)
    {
        const auto found = m_fonts.find(font);
        if (found != m_fonts.end())
            return *found;
        KnownFont fresh;
        fresh.isPictures = !font.fontTable("CBLC").isEmpty() && font.fontTable("loca").isEmpty();
        return *m_fonts.insert(font, fresh);
    }

    void addRun(const QGlyphRun &run, QPointF offset)
    {
        const QRawFont font = run.rawFont();
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        KnownFont &ofFont = known(font);
        for (qsizetype i = 0; i < glyphs.size(); ++i) {
            const QPointF at = positions.at(i) + offset;
            if (ofFont.isPictures) {
                // Reading its outline would cache a wrong width in the text engine.
                addPicture(font, glyphs.at(i), at);
                continue;
            }
            auto shape = ofFont.shapes.find(glyphs.at(i));
            if (shape == ofFont.shapes.end())
                shape = ofFont.shapes.insert(glyphs.at(i), addShape(font.pathForGlyph(glyphs.at(i))));
            if (*shape != kNoShape)
                m_setting.glyphs.push_back({*shape, at / kEm});
        }
    }

    std::size_t addShape(const QPainterPath &outline)
    {
        if (outline.isEmpty())
            return kNoShape;
        constexpr double toEms = 1.0 / kEm;
        QPainterPath shape = QTransform::fromScale(toEms, toEms).map(outline);
        shape.setFillRule(Qt::WindingFill);
        m_setting.shapes.push_back(std::move(shape));
        return m_setting.shapes.size() - 1;
    }

    void addPicture(const QRawFont &font, quint32 glyph, QPointF at)
    {
        QGlyphRun single;
        single.setRawFont(font);
        single.setGlyphIndexes({glyph});
        single.setPositions({at});
        // The engine knows no box for them. None is this large.
        m_setting.pictureGlyphs.push_back({single, QRectF(at.x() / kEm - 0.5, at.y() / kEm - 1.5, 3, 2)});
    }

    QHash<QRawFont, KnownFont> m_fonts;
    LineMetrics m_ofFont;
    TextSetting m_setting;
    double m_top = 0;
};

/// Held while a font of the catalog is used: copies of a QFont share data that each of them may change.
std::mutex &catalogFonts()
{
    static std::mutex mutex;
    return mutex;
}

} // namespace

Result<TextSetting> setText(const QString &text, const FontCatalog &fonts, const QString &fontName,
                            TextAlignment alignment, double widthInEms)
{
    if (text.size() > kMaxTextCharacters) {
        return fail(Texts::tr("the watermark's text is %1 characters long, more than the %2 that are drawn")
                        .arg(text.size())
                        .arg(kMaxTextCharacters));
    }
    const std::lock_guard lock(catalogFonts());
    const QFont font = fontOf(fonts, fontName);
    const PreparedText prepared = TextPreparation(text).prepared(font, fonts);
    QTextLayout layout(prepared.text, font);
    layout.setFormats(prepared.emoji);
    layout.setTextOption(optionsFor(alignment));
    layout.setCacheEnabled(true);

    GlyphGatherer glyphs(QRawFont::fromFont(font));
    const double width = std::min(widthInEms * kEm, kMaxFrameWidth);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine())
        line.setLineWidth(width);
    layout.endLayout();
    for (int i = 0; i < layout.lineCount(); ++i)
        glyphs.addLine(layout.lineAt(i));
    return std::move(glyphs).setting(missingIn(layout));
}

double lineHeightInEms(const FontCatalog &fonts, const QString &fontName)
{
    const std::lock_guard lock(catalogFonts());
    LineMetrics metrics;
    metrics.include(QRawFont::fromFont(fontOf(fonts, fontName)));
    return metrics.height() / kEm;
}

void drawPictureGlyphs(QPainter &painter, const TextSetting &setting, const QRectF &part)
{
    if (setting.pictureGlyphs.empty())
        return;
    const std::lock_guard lock(catalogFonts());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (const TextSetting::PictureGlyph &glyph : setting.pictureGlyphs) {
        if (glyph.reach.intersects(part))
            painter.drawGlyphRun({}, glyph.run);
    }
}

} // namespace plexa
