// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/filecomments.h"

#include "imageio/container/picturestarts.h"
#include "metadata/metadatatext.h"

#include <algorithm>

namespace plexa
{

namespace
{

constexpr qsizetype kMaxComments = 256;
constexpr qsizetype kMaxBytes = 16 * 1024 * 1024;

QByteArray withoutNulsAtEnd(QByteArray bytes)
{
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    return bytes;
}

bool isText(const QByteArray &comment)
{
    const QByteArray bytes = withoutNulsAtEnd(comment);
    // White space, and the escape that switches character sets.
    static const QByteArray allowed("\t\n\v\f\r\x1B");
    const auto isLetter = [](char byte) { return static_cast<uchar>(byte) >= ' ' || allowed.contains(byte); };
    return std::all_of(bytes.begin(), bytes.end(), isLetter) && !isPictureValue(comment);
}

} // namespace

bool FileComments::hasRoomFor(const QByteArray &bytes)
{
    if (bytes.size() > kMaxBytes - m_bytes) {
        m_isCut = true;
        return false;
    }
    m_bytes += bytes.size();
    return true;
}

void FileComments::add(const QByteArray &comment)
{
    if (comment.isEmpty())
        return;
    if (m_comments.size() == kMaxComments)
        m_isCut = true;
    else if (hasRoomFor(comment))
        m_comments.append(comment);
}

void FileComments::extendLast(const QByteArray &piece)
{
    if (!m_comments.isEmpty() && hasRoomFor(piece))
        m_comments.last() += piece;
}

QByteArray FileComments::text(bool &isWhole) const
{
    QByteArrayList texts;
    std::copy_if(m_comments.begin(), m_comments.end(), std::back_inserter(texts), isText);
    isWhole = !m_isCut && texts.size() == m_comments.size();
    if (texts.size() == 1)
        return texts.constFirst();
    for (QByteArray &text : texts)
        text = decodedText(withoutNulsAtEnd(text)).toUtf8();
    return texts.join('\n');
}

} // namespace plexa
