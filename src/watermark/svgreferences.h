// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QXmlStreamReader>

namespace plexa
{

/// Checks the references of an SVG document, token by token. A renderer would open any file of this machine
/// that a drawing names, so references to anything outside of the drawing are refused. Any thread.
class SvgReferences final
{
public:
    /// @param xml  at a token that was just read
    /// @return the reason why the document is not to be drawn; empty when there is none
    QString faultOf(const QXmlStreamReader &xml);

private:
    QString faultOfElement(const QXmlStreamReader &xml);
    QString faultOfPicture(QStringView data);

    QString m_style; ///< of the style element that is open
    bool m_isInStyle = false;
    qint64 m_pixels = 0; ///< of all pictures so far
};

} // namespace plexa
