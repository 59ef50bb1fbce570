// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/svgcheck.h"

#include "watermark/svgreferences.h"

#include <QCoreApplication>
#include <QHash>
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
    explicit SvgCheck(const QByteArray &svg)
        : m_xml(svg)
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
            if (m_isPartAt.size() > kMaxDepth || m_elements > kMaxElements)
                return tooLarge();
        }
        if (m_xml.hasError() || m_elements == 0)
            return Texts::tr("the SVG drawing is damaged in line %1").arg(m_xml.lineNumber());
        return weightOf(0, 0) > kMaxElements ? tooLarge() : QString();
    }

private:
    static QString tooLarge()
    {
        return Texts::tr("the SVG drawing is nested too deeply or has too many parts");
    }

    void enter()
    {
        ++m_elements;
        const QXmlStreamAttributes attributes = m_xml.attributes();
        const QString id = attributes.value(QLatin1StringView("id")).toString();
        m_isPartAt.push_back(!id.isEmpty());
        if (!id.isEmpty()) {
            m_byId.insert(id, m_parts.size());
            part().parts.push_back(m_parts.size());
            m_open.push_back(m_parts.size());
            m_parts.emplace_back();
        } else {
            part().elements += 1;
        }
        if (m_xml.name() != QLatin1StringView("use"))
            return;
        for (const QXmlStreamAttribute &attribute : attributes) {
            if (attribute.name() == QLatin1StringView("href"))
                part().uses.push_back(attribute.value().mid(1).toString());
        }
    }

    Part &part() { return m_parts[m_open.back()]; }

    void leave()
    {
        if (m_isPartAt.back())
            m_open.pop_back();
        m_isPartAt.pop_back();
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
    std::vector<std::size_t> m_open; ///< the parts that the current element is in
    std::vector<Part> m_parts;
    QHash<QString, std::size_t> m_byId;
};

} // namespace

QString faultOfSvg(const QByteArray &svg)
{
    return SvgCheck(svg).fault();
}

} // namespace plexa
