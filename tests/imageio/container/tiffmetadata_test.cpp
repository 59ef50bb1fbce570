// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/tiffmetadata.h"
#include "support/bytes.h"

#include <QBuffer>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

class TiffMetadataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Two directories, the second one far behind the first: it is left out when the first one has as many
    /// fields as a file may have.
    void fieldsAreLimited()
    {
        constexpr int kSecondAt = 4'000'000;
        for (const auto &[fields, ranges] : {std::pair{2, 2}, {65534, 2}, {65535, 1}}) {
            QByteArray file = QByteArray("MM\0\x2A\0\0\0\x08", 8) + big16(fields);
            for (int tag = 0; tag < fields; ++tag)
                file += big16(tag) + big16(3) + big32(1) + big32(0);
            file = (file + big32(kSecondAt)).leftJustified(kSecondAt, '\0');
            file += big16(1) + big16(0x010F) + big16(3) + big32(1) + big32(0) + big32(0);
            QBuffer buffer(&file);
            QVERIFY(buffer.open(QIODevice::ReadOnly));
            const auto found = tiffMetadataRanges(buffer, 1000);
            QCOMPARE(found.size(), size_t(ranges));
            QCOMPARE(found.back().end == quint64(file.size()), ranges == 2);
        }
    }
};

QTEST_GUILESS_MAIN(TiffMetadataTest)
#include "tiffmetadata_test.moc"
