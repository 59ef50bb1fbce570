// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/svgcheck.h"

#include "imageio/base/qtallocations.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QHash>
#include <QImageReader>
#include <QXmlStreamReader>

#include <algorithm>
#include <optional>
#include <vector>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WatermarkPicture)
};

/// A renderer walks the tree by calling itself.
constexpr int kMaxDepth = 200;
constexpr int kMaxElements = 200'000;

/// Chains of parts that use each other are not followed further.
constexpr int kMaxChain = 1000;

/// Gradients that adopt each other's stops.
constexpr int kMaxGradientChain = 100;

/// The parser sorts the stops of a gradient one by one.
constexpr int kMaxStops = 1000;

/// The parser tries every selector of the style sheets at every element.
constexpr qsizetype kMaxSelectors = 5000;

constexpr qint64 kMaxPicturePixels = 40'000'000;

/// PNG has up to 16 bits a channel.
constexpr qint64 kMaxBytesPerPixel = 8;

QString refersOutside()
{
    return Texts::tr("the SVG drawing refers to another file, which drawings may not");
}

bool startsWith(QStringView text, const char *start)
{
    return text.startsWith(QLatin1StringView(start), Qt::CaseInsensitive);
}

bool isInside(QStringView reference)
{
    return reference.isEmpty() || reference.startsWith(u'#') || startsWith(reference, "data:");
}

/// Of an attribute's value, or a style sheet.
bool hasOutsideUrl(QStringView css)
{
    const QLatin1StringView url("url(");
    for (qsizetype at = css.indexOf(url, 0, Qt::CaseInsensitive); at >= 0;
         at = css.indexOf(url, at + 4, Qt::CaseInsensitive)) {
        QStringView reference = css.mid(at + url.size()).trimmed();
        if (reference.startsWith(u'"') || reference.startsWith(u'\''))
            reference = reference.mid(1).trimmed();
        if (!isInside(reference))
            return true;
    }
    return css.contains(QLatin1StringView("@import"), Qt::CaseInsensitive);
}

/// Refuses references of an SVG document to anything outside of it, token by token: a renderer would open any
/// file that a drawing names.
class SvgReferences final
{
public:
    /// @return the reason to refuse the document at the current token; empty if there is none
    QString faultOf(const QXmlStreamReader &xml);

private:
    QString faultOfElement(const QXmlStreamReader &xml);
    QString faultOfPicture(QStringView data);

    QString m_style;           ///< the open style element
    qsizetype m_selectors = 0; ///< of all style elements
    bool m_isInStyle = false;
    qint64 m_pixels = 0; ///< of all pictures
};

QString SvgReferences::faultOf(const QXmlStreamReader &xml)
{
    switch (xml.tokenType()) {
    case QXmlStreamReader::ProcessingInstruction:
        return xml.processingInstructionTarget() == QLatin1StringView("xml-stylesheet") ? refersOutside()
                                                                                        : QString();
    case QXmlStreamReader::StartElement:
        return faultOfElement(xml);
    case QXmlStreamReader::Characters:
        if (m_isInStyle)
            m_style += xml.text();
        return {};
    case QXmlStreamReader::EndElement:
        if (xml.name() != QLatin1StringView("style"))
            return {};
        m_isInStyle = false;
        m_selectors += m_style.count(u'{') + m_style.count(u',');
        if (m_selectors > kMaxSelectors)
            return Texts::tr("the SVG drawing has more than %1 rules of style").arg(kMaxSelectors);
        return hasOutsideUrl(m_style) ? refersOutside() : QString();
    default:
        return {};
    }
}

QString SvgReferences::faultOfElement(const QXmlStreamReader &xml)
{
    if (xml.name() == QLatin1StringView("style")) {
        m_isInStyle = true;
        m_style.clear();
    }
    const QXmlStreamAttributes attributes = xml.attributes();
    for (const QXmlStreamAttribute &attribute : attributes) {
        const QStringView value = attribute.value().trimmed();
        if (hasOutsideUrl(value))
            return refersOutside();
        if (attribute.name() != QLatin1StringView("href"))
            continue;
        if (!isInside(value))
            return refersOutside();
        if (xml.name() != QLatin1StringView("image"))
            continue;
        if (const QString fault = faultOfPicture(value); !fault.isEmpty())
            return fault;
    }
    return {};
}

/// Refuses data that cannot be decoded, which a renderer would open as a file name, and drawings within the
/// drawing, which are not checked.
QString SvgReferences::faultOfPicture(QStringView data)
{
    if (data.isEmpty())
        return {};
    const QLatin1StringView marker("base64,");
    const qsizetype at = data.lastIndexOf(marker);
    if (!data.startsWith(QLatin1StringView("data:")) || at < 0)
        return Texts::tr("the SVG drawing has a picture in it that cannot be read");
    QByteArray bytes = QByteArray::fromBase64(data.mid(at + marker.size()).toLatin1());
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    const QByteArray format = reader.format();
    const bool isKnown = format == "png" || format == "jpeg" || format == "gif" || format == "webp";
    const QSize size = isKnown ? reader.size() : QSize();
    if (!isKnown || size.isEmpty())
        return Texts::tr("the SVG drawing has a picture in it that cannot be read");
    m_pixels += qint64{size.width()} * size.height();
    if (m_pixels > kMaxPicturePixels) {
        return Texts::tr("the pictures in the SVG drawing have more than %1 million pixels")
            .arg(kMaxPicturePixels / 1'000'000);
    }
    if (reader.read().isNull())
        return Texts::tr("the SVG drawing has a picture in it that cannot be read");
    return {};
}

/// An element with an id (or the whole document), and the elements that are drawn for it.
struct Part {
    double elements = 1; ///< itself and those in it that are in no other part
    std::vector<std::size_t> parts;
    std::vector<QString> uses;
    std::optional<double> weight; ///< elements drawn, used ones included; known once computed
    bool isOpen = false;          ///< being computed
};

class SvgCheck
{
public:
    explicit SvgCheck(QIODevice &svg)
        : m_xml(&svg)
    {
    }

    QString fault()
    {
        m_parts.emplace_back();
        m_open.push_back(0);
        while (!m_xml.atEnd()) {
            const QXmlStreamReader::TokenType token = m_xml.readNext();
            if (const QString outside = m_references.faultOf(m_xml); !outside.isEmpty())
                return outside;
            if (token == QXmlStreamReader::EndElement)
                leave();
            if (token != QXmlStreamReader::StartElement)
                continue;
            if (m_elements == 0 && m_xml.name() != QLatin1StringView("svg"))
                return Texts::tr("it is not an SVG drawing");
            enter();
            if (m_isPartAt.size() > kMaxDepth)
                return Texts::tr("the elements of the SVG drawing are nested more than %1 levels deep")
                    .arg(kMaxDepth);
            if (m_elements > kMaxElements)
                return tooManyParts();
            if (m_stops[m_stops.size() - 2] > kMaxStops)
                return Texts::tr("a gradient of the SVG drawing has more than %1 stops").arg(kMaxStops);
        }
        if (m_xml.hasError() || m_elements == 0)
            return Texts::tr("the SVG drawing is damaged in line %1").arg(m_xml.lineNumber());
        if (hasLongGradientChain())
            return Texts::tr("the gradients of the SVG drawing refer to too many others");
        return weightOf(0, 0) > kMaxElements ? tooManyParts() : QString();
    }

private:
    static QString tooManyParts()
    {
        return Texts::tr("the SVG drawing has more than %1 parts, references included").arg(kMaxElements);
    }

    void enter()
    {
        ++m_elements;
        const QXmlStreamAttributes attributes = m_xml.attributes();
        const QString id = attributes.value(QLatin1StringView("id")).toString();
        m_isPartAt.push_back(!id.isEmpty());
        if (m_xml.name() == QLatin1StringView("stop"))
            ++m_stops.back(); // of the element around it
        m_stops.push_back(0);
        if (!id.isEmpty()) {
            m_byId.insert(id, m_parts.size());
            part().parts.push_back(m_parts.size());
            m_open.push_back(m_parts.size());
            m_parts.emplace_back();
        } else {
            part().elements += 1;
        }
        const bool isUse = m_xml.name() == QLatin1StringView("use");
        if (!isUse && !m_xml.name().endsWith(QLatin1StringView("Gradient")))
            return;
        for (const QXmlStreamAttribute &attribute : attributes) {
            if (attribute.name() != QLatin1StringView("href"))
                continue;
            const QString used = attribute.value().mid(1).toString();
            if (isUse)
                part().uses.push_back(used);
            else
                m_gradients.insert(id, used);
        }
    }

    bool hasLongGradientChain() const
    {
        for (auto first = m_gradients.cbegin(); first != m_gradients.cend(); ++first) {
            int length = 0;
            for (auto next = first; next != m_gradients.cend(); next = m_gradients.constFind(*next)) {
                if (++length > kMaxGradientChain)
                    return true;
            }
        }
        return false;
    }

    Part &part() { return m_parts[m_open.back()]; }

    void leave()
    {
        if (m_isPartAt.back())
            m_open.pop_back();
        m_isPartAt.pop_back();
        m_stops.pop_back();
    }

    /// Infinite for a part that uses itself and for chains that are too long.
    double weightOf(std::size_t index, int depth)
    {
        constexpr double endless = 1e30;
        Part &part = m_parts[index];
        if (part.weight)
            return *part.weight;
        if (part.isOpen || depth > kMaxChain)
            return endless;
        part.isOpen = true;
        double weight = part.elements;
        for (const std::size_t inner : part.parts)
            weight += weightOf(inner, depth + 1);
        for (const QString &id : part.uses) {
            if (const auto used = m_byId.constFind(id); used != m_byId.constEnd())
                weight += weightOf(*used, depth + 1);
        }
        part.isOpen = false;
        part.weight = std::min(weight, endless);
        return *part.weight;
    }

    QXmlStreamReader m_xml;
    SvgReferences m_references;
    int m_elements = 0;
    std::vector<bool> m_isPartAt;    ///< for each open element
    std::vector<int> m_stops{0};     ///< directly in each open element; the first is the document
    std::vector<std::size_t> m_open; ///< the parts that the current element is in
    std::vector<Part> m_parts;
    QHash<QString, std::size_t> m_byId;
    QHash<QString, QString> m_gradients; ///< id: the id of the gradient whose stops it adopts
};

} // namespace

QString faultOfSvg(QIODevice &svg)
{
    allowQtPictures(kMaxPicturePixels * kMaxBytesPerPixel);
    return SvgCheck(svg).fault();
}

} // namespace plexa
