// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/svgreferences.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImageReader>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WatermarkPicture)
};

constexpr qint64 kMaxPicturePixels = 40'000'000;

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

} // namespace

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

} // namespace plexa
