// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xmlpropertylist.h"

#include "platform/propertylistcheck.h"
#include "platform/xmlbounds.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QXmlStreamReader>

#include <plist/plist.h>

#include <memory>
#include <optional>
#include <type_traits>

// The reader of libplist has no limits on nesting and size.

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::PropertyList)
};

/// Only the root has one.
constexpr int kMaxAttributes = 16;

struct FreeNode {
    void operator()(plist_t node) const { plist_free(node); }
};
using Node = std::unique_ptr<std::remove_pointer_t<plist_t>, FreeNode>;

class Builder
{
public:
    explicit Builder(const QByteArray &bytes)
        : m_xml(bytes)
    {
    }

    /// Null when anything is wrong.
    Node build();
    bool isTooLarge() const { return m_isTooLarge; }

private:
    bool findStart();
    Node element(int level);
    Node dictionary(int level);
    Node array(int level);
    Node leaf(const QString &kind);
    Node tooLarge()
    {
        m_isTooLarge = true;
        return nullptr;
    }

    QXmlStreamReader m_xml;
    qint64 m_nodes = 0;
    bool m_isTooLarge = false;
};

/// Goes to the outermost element. False when the file declares entities.
bool Builder::findStart()
{
    while (!m_xml.atEnd()) {
        m_xml.readNext();
        if (m_xml.isDTD() && !m_xml.entityDeclarations().isEmpty())
            return false;
        if (m_xml.isStartElement())
            return true;
    }
    return false;
}

Node Builder::build()
{
    if (!findStart() || m_xml.name() != QLatin1StringView("plist") || !m_xml.readNextStartElement())
        return nullptr;
    Node top = element(0);
    if (!top || m_xml.readNextStartElement())
        return nullptr;
    while (!m_xml.atEnd())
        m_xml.readNext();
    return m_xml.hasError() ? nullptr : std::move(top);
}

Node Builder::element(int level)
{
    if (level > kMaxPropertyListNesting)
        return nullptr;
    if (++m_nodes > kMaxPropertyListNodes)
        return tooLarge();
    if (m_xml.name() == QLatin1StringView("dict"))
        return dictionary(level);
    if (m_xml.name() == QLatin1StringView("array"))
        return array(level);
    const QString kind = m_xml.name().toString();
    return leaf(kind);
}

Node Builder::dictionary(int level)
{
    Node dictionary(plist_new_dict());
    qint64 keys = 0;
    std::optional<uint64_t> reference;
    while (m_xml.readNextStartElement()) {
        if (m_xml.name() != QLatin1StringView("key"))
            return nullptr;
        const QByteArray key = m_xml.readElementText().toUtf8();
        if (++keys > kMaxPropertyListKeys)
            return tooLarge();
        Node value = m_xml.readNextStartElement() ? element(level + 1) : nullptr;
        if (!value)
            return nullptr;
        if (key == "CF$UID" && plist_get_node_type(value.get()) == PLIST_UINT)
            plist_get_uint_val(value.get(), &reference.emplace());
        plist_dict_set_item(dictionary.get(), key.constData(), value.release());
    }
    if (m_xml.hasError())
        return nullptr;
    return keys == 1 && reference ? Node(plist_new_uid(*reference)) : std::move(dictionary);
}

Node Builder::array(int level)
{
    Node array(plist_new_array());
    while (m_xml.readNextStartElement()) {
        Node value = element(level + 1);
        if (!value)
            return nullptr;
        plist_array_append_item(array.get(), value.release());
    }
    return m_xml.hasError() ? nullptr : std::move(array);
}

Node Builder::leaf(const QString &kind)
{
    const QString text = m_xml.readElementText();
    if (m_xml.hasError())
        return nullptr;
    bool isRight = true;
    Node node;
    if (kind == QLatin1StringView("string")) {
        node.reset(plist_new_string(text.toUtf8().constData()));
    } else if (kind == QLatin1StringView("integer")) {
        // Negative numbers are held like this by the library.
        node.reset(plist_new_uint(static_cast<quint64>(text.trimmed().toLongLong(&isRight, 0))));
    } else if (kind == QLatin1StringView("real")) {
        node.reset(plist_new_real(text.trimmed().toDouble(&isRight)));
    } else if (kind == QLatin1StringView("true") || kind == QLatin1StringView("false")) {
        node.reset(plist_new_bool(kind == QLatin1StringView("true") ? 1 : 0));
    } else if (kind == QLatin1StringView("data")) {
        QByteArray base64 = text.toLatin1();
        base64.removeIf([](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
        const auto data = QByteArray::fromBase64Encoding(base64, QByteArray::AbortOnBase64DecodingErrors);
        isRight = bool(data);
        node.reset(plist_new_data(data.decoded.constData(), static_cast<quint64>(data.decoded.size())));
    } else if (kind == QLatin1StringView("date")) {
        // Dates are checked, not used.
        isRight = QDateTime::fromString(text.trimmed(), Qt::ISODate).isValid();
        node.reset(plist_new_date(0, 0));
    }
    return isRight ? std::move(node) : nullptr;
}

/// What XML 1.0 can hold, and reads back as it is.
QString storable(QString text)
{
    for (QChar &character : text) {
        const char16_t code = character.unicode();
        if ((code < 0x20 && code != u'\t' && code != u'\n') || code >= 0xFFFE)
            character = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

bool isXmlPropertyList(QByteArrayView bytes)
{
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")) // UTF-16
        return true;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    return bytes.trimmed().startsWith('<');
}

Result<void *> propertyListFromXml(const QByteArray &bytes)
{
    if (bytes.size() > kMaxXmlPropertyListBytes)
        return fail(Texts::tr("it is larger than %1 MB").arg(kMaxXmlPropertyListBytes / 1'000'000));
    const Result<QByteArray> bounded = boundedXml(bytes, kMaxAttributes);
    if (!bounded)
        return tl::unexpected(bounded.error());
    Builder builder(*bounded);
    if (Node top = builder.build())
        return top.release();
    return fail(builder.isTooLarge() ? Texts::tr("it holds more than can be read")
                                     : Texts::tr("it is damaged"));
}

Result<QStringList> stringsFromXml(const QByteArray &bytes)
{
    const Result<void *> list = propertyListFromXml(bytes);
    if (!list)
        return tl::unexpected(list.error());
    const Node array(*list);
    const auto wrongKind = [] { return fail(Texts::tr("it does not hold a list of texts")); };
    if (plist_get_node_type(array.get()) != PLIST_ARRAY)
        return wrongKind();
    QStringList strings;
    const uint32_t count = plist_array_get_size(array.get());
    for (uint32_t index = 0; index < count; ++index) {
        const plist_t item = plist_array_get_item(array.get(), index);
        if (plist_get_node_type(item) != PLIST_STRING)
            return wrongKind();
        uint64_t length = 0;
        const char *const text = plist_get_string_ptr(item, &length);
        strings.append(QString::fromUtf8(text, static_cast<qsizetype>(length)));
    }
    return strings;
}

QByteArray xmlFromStrings(const QStringList &strings)
{
    const Node array(plist_new_array());
    for (const QString &string : strings)
        plist_array_append_item(array.get(), plist_new_string(storable(string).toUtf8().constData()));
    char *xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(array.get(), &xml, &length);
    const QByteArray bytes(xml, static_cast<qsizetype>(length));
    plist_to_xml_free(xml);
    return bytes;
}

} // namespace plexa
