// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/heifgeometry.h"
#include "imageio/container/heifitems.h"
#include "support/bytes.h"

#include <QBuffer>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

QByteArray box(const char *type, const QByteArray &payload)
{
    return big32(payload.size() + 8) + type + payload;
}

/// Version and flags 0.
QByteArray fullBox(const char *type, const QByteArray &payload)
{
    return box(type, QByteArray(4, '\0') + payload);
}

/// A file with items, of which the first has extents and, so many times, a property.
QByteArray fileOf(const QByteArray &extents, int extentCount, const QByteArray &property = box("irot", "\1"),
                  int links = 1, int items = 1, bool isHidden = false, const QByteArray &references = {})
{
    QByteArray info;
    for (int id = 1; id <= items; ++id)
        info +=
            box("infe", QByteArray("\2\0\0", 3) + char(isHidden) + big16(id) + QByteArray("\0\0hvc1\0", 7));
    const QByteArray location = QByteArray("\x44\0\0\1\0\1\0\0", 8) + big16(extentCount) + extents;
    QByteArray associations;
    for (int left = links; left > 0; left -= 250)
        associations += big16(1) + char(qMin(left, 250)) + QByteArray(qMin(left, 250), '\1');
    return fullBox(
        "meta",
        fullBox("pitm", big16(1)) + fullBox("iinf", big16(1) + info) + fullBox("iloc", location) +
            box("iprp", box("ipco", property) + fullBox("ipma", big32((links + 249) / 250) + associations)) +
            fullBox("iref", references));
}

std::optional<HeifItems> itemsOf(QByteArray file)
{
    QBuffer device(&file);
    device.open(QIODevice::ReadOnly);
    const auto items = HeifItems::read(device);
    return items ? std::optional(*items) : std::nullopt;
}

} // namespace

/// Are the boxes of a HEIF file read completely?
class HeifItemsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesFollowTheExtents()
    {
        // "abc", nothing, "f", "de"
        const QByteArray text = "abcdef";
        const auto extent = [](quint32 offset, quint32 length) { return big32(offset) + big32(length); };
        const QByteArray extents = extent(0, 3) + extent(2, 0) + extent(5, 1) + extent(3, 2);
        const auto items = itemsOf(fileOf(extents, 4));
        QVERIFY(items);
        QByteArray data = text;
        QBuffer device(&data);
        device.open(QIODevice::ReadOnly);
        const QByteArray expected = "abcfde";
        for (int offset = 0; offset < 8; ++offset) {
            for (int count = 0; count < 8; ++count)
                QCOMPARE(items->bytes(device, items->items.value(1), offset, count),
                         expected.mid(offset, count));
        }
    }

    void turnsAreChecked()
    {
        const QByteArray crop = big32(1).repeated(8);
        const QByteArray noCrop = big32(1) + big32(0) + big32(1).repeated(6); // a denominator of 0
        for (const auto &[property, links, turns] : {std::tuple(box("irot", "\1"), 16, 16),
                                                     {box("irot", "\1"), 17, -1},
                                                     {box("irot", {}), 1, -1},
                                                     {box("clap", crop), 1, 1},
                                                     {box("clap", crop.chopped(1)), 1, -1},
                                                     {box("clap", noCrop), 1, -1}}) {
            const auto items = itemsOf(fileOf({}, 0, property, links));
            QVERIFY(items);
            const HeifItem item = items->items.value(1);
            QCOMPARE(item.hasValidTurns ? item.turns.size() : -1, turns);
        }
        const QByteArray whole = big32(4) + big32(1) + big32(4) + big32(1);
        for (const int offset : {0, -1}) { // in halves of a pixel
            const auto items =
                itemsOf(fileOf({}, 0, box("clap", whole + big32(offset) + big32(2) + big32(0) + big32(1))));
            QCOMPARE(HeifGeometry::of({4, 4}, items->items.value(1).turns).has_value(), offset == 0);
        }
    }

    void furtherPicturesAreNamed()
    {
        const auto auxiliary = [](const char *type) { return fullBox("auxC", QByteArray(type) + '\0'); };
        for (const auto &[property, items, isHidden, names] :
             {std::tuple(box("free", {}), 1, false, QStringList()),
              {box("free", {}), 2, false, {QStringLiteral("further pictures")}},
              {box("free", {}), 2, true, {}},
              {auxiliary("urn:mpeg:mpegB:cicp:systems:auxiliary:alpha"), 1, false, {}},
              {auxiliary("urn:mpeg:hevc:2015:auxid:2"), 1, false, {QStringLiteral("depth map")}},
              {auxiliary("urn:com:photo:2020:aux:hdrgainmap"), 1, false, {QStringLiteral("gain map")}}})
            QCOMPARE(itemsOf(fileOf({}, 0, property, 1, items, isHidden))->furtherPictures(), names);
        // The second is a part of the first, or its preview.
        for (const auto &[type, links, names] :
             {std::tuple("dimg", big16(1) + big16(1) + big16(2), QStringList()),
              {"thmb", big16(2) + big16(1) + big16(1), {QStringLiteral("preview")}}})
            QCOMPARE(
                itemsOf(fileOf({}, 0, box("free", {}), 1, 2, false, box(type, links)))->furtherPictures(),
                names);
    }

    void numbersAreLimited()
    {
        QVERIFY(itemsOf(fileOf({}, 0, box("free", {}), 200'000, 10'000)));
        QVERIFY(!itemsOf(fileOf({}, 0, box("free", {}), 1, 10'001)));
        QVERIFY(!itemsOf(fileOf({}, 0, box("free", {}), 200'001)));
    }
};

QTEST_GUILESS_MAIN(HeifItemsTest)

#include "heifitems_test.moc"
