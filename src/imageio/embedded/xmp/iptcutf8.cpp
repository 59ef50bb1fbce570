// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/iptcutf8.h"

#include "imageio/embedded/exif/exifvalues.h"
#include "metadata/metadatatext.h"

namespace plexa
{

void makeUtf8(Exiv2::IptcData &iptc)
{
    const QByteArray characterSet = iptcCharacterSet(iptc);
    for (Exiv2::Iptcdatum &datum : iptc) {
        if (datum.typeId() != Exiv2::string || datum.record() != Exiv2::IptcDataSets::application2)
            continue;
        const std::string before = datum.toString();
        const std::string after =
            decodedIptcText(QByteArray::fromStdString(before), characterSet).toStdString();
        if (after != before)
            datum.setValue(after);
    }
    iptc["Iptc.Envelope.CharacterSet"] = std::string("\x1B%G");
}

} // namespace plexa
