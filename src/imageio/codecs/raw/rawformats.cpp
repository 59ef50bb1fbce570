// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/raw/rawformats.h"

#include "imageio/container/tiffpictures.h"

#include <algorithm>

namespace plexa
{

namespace
{

bool isCr2(QByteArrayView head)
{
    return head.size() >= 16 && isClassicTiff(head) && head.sliced(8, 2) == QByteArrayView("CR");
}

bool isCr3(QByteArrayView head)
{
    return head.size() >= 16 && head.sliced(4, 8) == QByteArrayView("ftypcrx ");
}

bool isCrw(QByteArrayView head)
{
    return head.size() >= 16 && (head.startsWith("II") || head.startsWith("MM")) &&
           head.sliced(6, 8) == QByteArrayView("HEAPCCDR");
}

bool isRw2(QByteArrayView head)
{
    return head.startsWith(QByteArrayView("IIU\0", 4));
}

bool isOrf(QByteArrayView head)
{
    return head.startsWith("IIRO") || head.startsWith("IIRS") || head.startsWith("MMOR");
}

bool isRaf(QByteArrayView head)
{
    return head.startsWith("FUJIFILMCCD-RAW");
}

bool isMrw(QByteArrayView head)
{
    return head.startsWith(QByteArrayView("\0MRM", 4)) || head.startsWith(QByteArrayView("\0MRI", 4));
}

bool isQuickTake(QByteArrayView head)
{
    return head.startsWith("qktk") || head.startsWith("qktn");
}

bool isIiq(QByteArrayView head)
{
    const qsizetype at = isClassicTiff(head) ? 8 : 0;
    const QByteArrayView mark = head.size() >= at + 4 ? head.sliced(at, 4) : QByteArrayView();
    return mark == QByteArrayView("IIII") || mark == QByteArrayView("MMMM");
}

struct Row {
    const char *type;
    const char *name;
    QStringList suffixes;
    bool (*matches)(QByteArrayView head);
};

QList<ImageFormat> formatsOf(const std::vector<Row> &rows, const Codec &codec)
{
    QList<ImageFormat> formats;
    for (const Row &row : rows)
        formats.append({row.type, row.name, row.suffixes, row.matches, &codec, false, false});
    return formats;
}

} // namespace

QList<ImageFormat> rawFormatsWithSignature(const Codec &codec)
{
    return formatsOf({{"image/x-canon-cr2", "CR2", {u"cr2"_qs}, isCr2},
                      {"image/x-canon-cr3", "CR3", {u"cr3"_qs}, isCr3},
                      {"image/x-canon-crw", "CRW", {u"crw"_qs}, isCrw},
                      {"image/x-panasonic-rw2", "RW2", {u"rw2"_qs, u"raw"_qs}, isRw2},
                      {"image/x-leica-rwl", "RWL", {u"rwl"_qs}, isRw2},
                      {"image/x-olympus-orf", "ORF", {u"orf"_qs}, isOrf},
                      {"image/x-fuji-raf", "RAF", {u"raf"_qs}, isRaf},
                      {"image/x-minolta-mrw", "MRW", {u"mrw"_qs}, isMrw},
                      {"image/x-phaseone-iiq", "IIQ", {u"iiq"_qs}, isIiq},
                      {"image/x-apple-quicktake", "QuickTake", {u"qtk"_qs}, isQuickTake}},
                     codec);
}

QList<ImageFormat> rawFormatsLikeTiff(const Codec &codec)
{
    return formatsOf({{"image/x-adobe-dng", "DNG", {u"dng"_qs}, isClassicTiff},
                      {"image/x-nikon-nef", "NEF", {u"nef"_qs}, isClassicTiff},
                      {"image/x-nikon-nrw", "NRW", {u"nrw"_qs}, isClassicTiff},
                      {"image/x-sony-arw", "ARW", {u"arw"_qs}, isClassicTiff},
                      {"image/x-sony-sr2", "SR2", {u"sr2"_qs}, isClassicTiff},
                      {"image/x-sony-srf", "SRF", {u"srf"_qs}, isClassicTiff},
                      {"image/x-pentax-pef", "PEF", {u"pef"_qs}, isClassicTiff},
                      {"image/x-samsung-srw", "SRW", {u"srw"_qs}, isClassicTiff},
                      {"image/x-kodak-kdc", "KDC", {u"kdc"_qs}, isClassicTiff},
                      {"image/x-kodak-dcr", "DCR", {u"dcr"_qs}, isClassicTiff},
                      {"image/x-kodak-k25", "K25", {u"k25"_qs}, isClassicTiff},
                      {"image/x-epson-erf", "ERF", {u"erf"_qs}, isClassicTiff},
                      {"image/x-hasselblad-3fr", "3FR", {u"3fr"_qs}, isClassicTiff},
                      {"image/x-hasselblad-fff", "FFF", {u"fff"_qs}, isClassicTiff},
                      {"image/x-mamiya-mef", "MEF", {u"mef"_qs}, isClassicTiff},
                      {"image/x-leaf-mos", "MOS", {u"mos"_qs}, isClassicTiff},
                      // What is called by no name of these.
                      {"image/x-dcraw", "camera raw", {}, isClassicTiff}},
                     codec);
}

} // namespace plexa
