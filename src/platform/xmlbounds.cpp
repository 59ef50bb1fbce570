// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xmlbounds.h"

#include <QCoreApplication>
#include <QStringDecoder>

#include <vector>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::PropertyList)
};

/// Drawing programs declare a few entities.
constexpr qsizetype kMaxDocumentType = 16'000;

/// Default attributes are compared with those of every element.
constexpr qsizetype kMaxDefaultAttributes = 2'000;

/// The byte order mark and the XML declaration; empty without them.
QByteArrayView declarationOf(QByteArrayView utf8)
{
    const qsizetype start = utf8.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    const qsizetype end = utf8.sliced(start).startsWith("<?xml") ? utf8.indexOf("?>") : -1;
    return utf8.first(end < 0 ? start : end + 2);
}

/// The encoding that the XML declaration states; empty without one.
QByteArray statedEncoding(QByteArrayView declaration)
{
    const qsizetype name = declaration.indexOf("encoding");
    if (name < 0)
        return {};
    const QByteArrayView value = declaration.sliced(name + 8).trimmed();
    const QByteArrayView quoted = value.startsWith('=') ? value.sliced(1).trimmed() : QByteArrayView();
    const qsizetype end = quoted.size() > 1 ? quoted.indexOf(quoted[0], 1) : -1;
    return end < 0 ? QByteArray("unknown") : quoted.sliced(1, end - 1).toByteArray();
}

/// Without a declaration of another encoding.
Result<QByteArray> inUtf8(const QByteArray &bytes)
{
    const auto detected = QStringConverter::encodingForData(bytes, u'<');
    const bool isWide = detected && *detected != QStringConverter::Utf8;
    const QByteArrayView declaration = isWide ? QByteArrayView() : declarationOf(bytes);
    const QByteArray stated = statedEncoding(declaration);
    const bool isUtf8 = stated.isEmpty() || stated.compare("utf-8", Qt::CaseInsensitive) == 0;
    if (!isWide && isUtf8 && declaration.count("encoding") <= 1)
        return bytes;
    QStringDecoder decoder = detected ? QStringDecoder(*detected) : QStringDecoder(stated.constData());
    if (!decoder.isValid())
        return fail(
            Texts::tr("it is in the unknown encoding \"%1\"").arg(QString::fromUtf8(stated.left(40))));
    const QString text = decoder(bytes);
    if (decoder.hasError())
        return fail(Texts::tr("it is damaged"));
    QByteArray utf8 = text.toUtf8();
    return utf8.remove(0, declarationOf(utf8).size());
}

/// Walks the tags of a document. Faults of the XML are left to the parser, which stops at them.
class TagWalk
{
public:
    TagWalk(QByteArrayView xml, int maxAttributes, int maxNamespaces)
        : m_xml(xml)
        , m_maxAttributes(maxAttributes)
        , m_maxNamespaces(maxNamespaces)
    {
    }

    QString fault()
    {
        while (m_fault.isEmpty()) {
            m_at = m_xml.indexOf('<', m_at);
            if (m_at < 0)
                return {};
            if (!skip("<!--", "-->") && !skip("<![CDATA[", "]]>") && !skip("<?", "?>") &&
                !skipDocumentType() && !skipClosingTag())
                readTag();
        }
        return m_fault;
    }

private:
    bool startsHere(QByteArrayView text) const { return m_xml.sliced(m_at).startsWith(text); }

    bool skip(QByteArrayView start, QByteArrayView end)
    {
        if (!startsHere(start))
            return false;
        const qsizetype found = m_xml.indexOf(end, m_at + start.size());
        m_at = found < 0 ? m_xml.size() : found + end.size();
        return true;
    }

    /// A longer document type is refused: its end may be stated so that this walk and the parser disagree.
    bool skipDocumentType()
    {
        if (!startsHere("<!"))
            return false;
        const qsizetype start = m_at;
        int open = 0;
        char quote = '\0';
        for (; m_at < m_xml.size() && (m_xml[m_at] != '>' || quote || open > 0); ++m_at) {
            const char c = m_xml[m_at];
            if (quote)
                quote = c == quote ? '\0' : quote;
            else if (c == '"' || c == '\'')
                quote = c;
            else if (c == '[' || c == ']')
                open += c == '[' ? 1 : -1;
            else if (c == '<' && (skip("<!--", "-->") || skip("<?", "?>")))
                --m_at;
        }
        const QByteArrayView type = m_xml.sliced(start, m_at - start);
        if (type.size() > (type.contains("ATTLIST") ? kMaxDefaultAttributes : kMaxDocumentType))
            m_fault = Texts::tr("its document type is too long");
        return true;
    }

    bool skipClosingTag()
    {
        if (!startsHere("</"))
            return false;
        close();
        ++m_at;
        return true;
    }

    void close()
    {
        if (m_declared.empty())
            return;
        m_namespaces -= m_declared.back();
        m_declared.pop_back();
    }

    bool declaresNamespace(qsizetype equalSign, qsizetype tag) const
    {
        QByteArrayView before = m_xml.sliced(tag, equalSign - tag).trimmed();
        qsizetype start = before.size();
        while (start > 0 && !QByteArrayView(" \t\r\n'\"").contains(before[start - 1]))
            --start;
        return before.sliced(start).startsWith("xmlns");
    }

    void readTag()
    {
        const qsizetype tag = ++m_at;
        int attributes = 0;
        m_declared.push_back(0);
        qsizetype valueEnd = tag;
        for (; m_at < m_xml.size() && m_xml[m_at] != '>' && m_fault.isEmpty(); ++m_at) {
            const char c = m_xml[m_at];
            if (c == '"' || c == '\'') {
                const qsizetype end = m_xml.indexOf(c, m_at + 1);
                m_at = end < 0 ? m_xml.size() - 1 : end;
                valueEnd = m_at + 1;
            } else if (c == '=') {
                m_declared.back() += declaresNamespace(m_at, valueEnd) ? 1 : 0;
                if (++attributes > m_maxAttributes)
                    m_fault = Texts::tr("an element has more than %1 attributes").arg(m_maxAttributes);
            }
        }
        m_namespaces += m_declared.back();
        if (m_namespaces > m_maxNamespaces)
            m_fault = Texts::tr("more than %1 namespaces are declared at once").arg(m_maxNamespaces);
        if (m_xml[m_at - 1] == '/')
            close();
    }

    QByteArrayView m_xml;
    int m_maxAttributes;
    int m_maxNamespaces;
    qsizetype m_at = 0;
    std::vector<int> m_declared; ///< namespaces, for each open element
    int m_namespaces = 0;        ///< the sum
    QString m_fault;
};

} // namespace

Result<QByteArray> boundedXml(const QByteArray &bytes, int maxAttributes, int maxNamespaces)
{
    return inUtf8(bytes).and_then([=](const QByteArray &utf8) -> Result<QByteArray> {
        const QString fault = TagWalk(utf8, maxAttributes, maxNamespaces).fault();
        return fault.isEmpty() ? Result<QByteArray>(utf8) : fail(fault);
    });
}

} // namespace plexa
