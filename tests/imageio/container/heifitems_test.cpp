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

QByteArray associations(int count)
{
    QByteArray entries;
    quint32 entryCount = 0;
    for (; count > 0; count -= 255, ++entryCount) {
        const int links = qMin(count, 255);
        entries += big16(1) + char(links) + QByteArray(links, '\1');
    }
    return fullBox("ipma", big32(entryCount) + entries);
}

QByteArray references(int count)
{
    QByteArray boxes;
    for (; count > 0; count -= 60'000) {
        const int some = qMin(count, 60'000);
        boxes += box("dimg", big16(1) + big16(some) + QByteArray(some * 2, '\0'));
    }
    return fullBox("iref", boxes);
}

/// A file with one item.
QByteArray fileOf(const QByteArray &extents, int extentCount, const QByteArray &property,
                  const QByteArray &links)
{
    const QByteArray info = box("infe", QByteArray("\2\0\0\0\0\1\0\0hvc1\0", 13));
    const QByteArray location = QByteArray("\x44\0\0\1\0\1\0\0", 8) + big16(extentCount) + extents;
    return fullBox("meta", fullBox("pitm", big16(1)) + fullBox("iinf", big16(1) + info) +
                               fullBox("iloc", location) + box("iprp", box("ipco", property) + links));
}

Result<HeifItems> readFrom(QByteArray file)
{
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    return HeifItems::read(buffer);
}

} // namespace

/// Are the boxes of a HEIF file read completely, and files refused that would need too much time or memory?
class HeifItemsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linksAreBounded()
    {
        const auto withLinks = [](int count) {
            return readFrom(fileOf({}, 0, box("hvcC", QByteArray(100'000, 'x')), associations(count)));
        };
        const auto withReferences = [](int count) {
            const QByteArray file = fileOf({}, 0, box("irot", "\1"), associations(1));
            return readFrom(box("meta", file.mid(8) + references(count)));
        };
        const auto items = withLinks(1000);
        QVERIFY(items);
        QCOMPARE(items->items.value(1).configuration, QByteArray(100'000, 'x'));
        const auto referring = withReferences(1000);
        QVERIFY(referring);
        QCOMPARE(referring->items.value(1).parts.size(), 1000);
        QVERIFY(!withLinks(1'000'000));
        QVERIFY(!withReferences(1'000'000));
    }

    void turnsAreBounded()
    {
        for (const int count : {3, 1000}) {
            const auto items = readFrom(fileOf({}, 0, box("irot", "\1"), associations(count)));
            QVERIFY(items);
            QCOMPARE(items->items.value(1).hasValidTurns, count == 3);
            QVERIFY(items->items.value(1).turns.size() < 100);
        }
    }

    void bytesFollowTheExtents()
    {
        // "abc", nothing, "f", "de"
        const QByteArray text = "abcdef";
        const auto extent = [](quint32 offset, quint32 length) { return big32(offset) + big32(length); };
        const QByteArray extents = extent(0, 3) + extent(2, 0) + extent(5, 1) + extent(3, 2);
        const auto items = readFrom(fileOf(extents, 4, box("irot", "\1"), associations(1)));
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
