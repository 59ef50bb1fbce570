// SPDX-License-Identifier: GPL-3.0-or-later

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

/// A file with one item.
QByteArray fileOf(const QByteArray &extents, int extentCount)
{
    const QByteArray info = box("infe", QByteArray("\2\0\0\0\0\1\0\0hvc1\0", 13));
    const QByteArray location = QByteArray("\x44\0\0\1\0\1\0\0", 8) + big16(extentCount) + extents;
    const QByteArray associations = fullBox("ipma", big32(1) + big16(1) + "\1\1");
    return fullBox("meta", fullBox("pitm", big16(1)) + fullBox("iinf", big16(1) + info) +
                               fullBox("iloc", location) +
                               box("iprp", box("ipco", box("irot", "\1")) + associations));
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
        QByteArray file = fileOf(extents, 4);
        QBuffer boxes(&file);
        boxes.open(QIODevice::ReadOnly);
        const auto items = HeifItems::read(boxes);
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
};

QTEST_GUILESS_MAIN(HeifItemsTest)

#include "heifitems_test.moc"
