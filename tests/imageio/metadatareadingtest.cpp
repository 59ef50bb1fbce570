// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embeddedmetadata.h"
#include "imageio/exiftoolrecords.h"
#include "imageio/metadatafields.h"
#include "imageio/propertykeys.h"

#include <QTest>

#include <cmath>
#include <thread>

using namespace plexa;

namespace
{

/// Where exiftool's names differ from the dictionary's.
QString exiftoolName(MetadataGroup group, const QString &key)
{
    static const QMap<QString, QString> names{
        {u"DateTime"_qs, u"ModifyDate"_qs},
        {u"ISOSpeedRatings"_qs, u"ISO"_qs},
        {u"DateTimeDigitized"_qs, u"CreateDate"_qs},
        {u"ExposureBiasValue"_qs, u"ExposureCompensation"_qs},
        {u"SubsecTime"_qs, u"SubSecTime"_qs},
        {u"SubsecTimeOriginal"_qs, u"SubSecTimeOriginal"_qs},
        {u"SubsecTimeDigitized"_qs, u"SubSecTimeDigitized"_qs},
        {u"FlashPixVersion"_qs, u"FlashpixVersion"_qs},
        {u"PixelXDimension"_qs, u"ExifImageWidth"_qs},
        {u"PixelYDimension"_qs, u"ExifImageHeight"_qs},
        {u"FocalLenIn35mmFilm"_qs, u"FocalLengthIn35mmFormat"_qs},
        {u"SubjectDistRange"_qs, u"SubjectDistanceRange"_qs},
        {u"CameraOwnerName"_qs, u"OwnerName"_qs},
        {u"BodySerialNumber"_qs, u"SerialNumber"_qs},
        {u"LensSpecification"_qs, u"LensInfo"_qs},
        {u"GPSVersion"_qs, u"GPSVersionID"_qs},
        {u"Differental"_qs, u"GPSDifferential"_qs},
        {u"Byline"_qs, u"By-line"_qs},
        {u"BylineTitle"_qs, u"By-lineTitle"_qs},
        {u"Caption/Abstract"_qs, u"Caption-Abstract"_qs},
        {u"Writer/Editor"_qs, u"Writer-Editor"_qs},
        {u"Province/State"_qs, u"Province-State"_qs},
        {u"SubLocation"_qs, u"Sub-location"_qs},
        {u"Country/PrimaryLocationName"_qs, u"Country-PrimaryLocationName"_qs},
        {u"Country/PrimaryLocationCode"_qs, u"Country-PrimaryLocationCode"_qs},
        {u"SupplementalCategory"_qs, u"SupplementalCategories"_qs},
    };
    QString name = names.value(key, key);
    if (group == MetadataGroup::Gps && !name.startsWith(u"GPS"))
        name.prepend(u"GPS");
    return name;
}

QStringList exiftoolGroups(MetadataGroup group)
{
    switch (group) {
    case MetadataGroup::Tiff:
        return {u"IFD0"_qs};
    case MetadataGroup::Exif:
        return {u"ExifIFD"_qs};
    case MetadataGroup::Gps:
        return {u"GPS"_qs};
    case MetadataGroup::Iptc:
        return {u"IPTC"_qs};
    default:
        return {};
    }
}

QStringList words(const QVariant &value)
{
    QStringList result;
    if (value.typeId() == QMetaType::QVariantList) {
        for (const QVariant &item : value.toList())
            result += words(item);
        return result;
    }
    return value.typeId() == QMetaType::Double ? QStringList(QString::number(value.toDouble(), 'g', 17))
                                               : value.toString().split(u' ');
}

/// exiftool turns APEX values into seconds and F-numbers.
QVariant withoutApex(const MetadataField &field, const QVariant &value)
{
    if (field.key == kCGImagePropertyExifShutterSpeedValue && value.toDouble() < 100)
        return std::exp2(-value.toDouble());
    if (field.key == kCGImagePropertyExifApertureValue || field.key == kCGImagePropertyExifMaxApertureValue)
        return std::exp2(value.toDouble() / 2);
    return value;
}

bool isSame(const QString &expected, const MetadataField &field, const QVariant &value)
{
    const MetadataKind kind = field.kind;
    if (kind == MetadataKind::Version) {
        const QVariantList parts = value.toList();
        QString digits = QStringLiteral("%1%2")
                             .arg(parts.value(0).toInt(), 2, 10, QChar(u'0'))
                             .arg(parts.value(1).toInt());
        return (digits + (parts.size() > 2 ? parts[2].toString() : QStringLiteral("0"))) == expected;
    }
    if (kind == MetadataKind::IptcDate)
        return QString(expected).remove(u':') == value.toString();
    if (field.group == MetadataGroup::Iptc && QString(field.key).contains(u"Time"))
        return value.toString().startsWith(QString(expected).remove(u':'));
    if (field.key == kCGImagePropertyExifCFAPattern) // exiftool leaves the high bytes of both sides out
        return value.toList().size() == expected.split(u' ').size() + 2;
    const QStringList left =
        QString(expected).replace(QLatin1StringView("undef"), QLatin1StringView("0")).split(u' ');
    const QStringList right = words(value);
    if (left.size() != right.size())
        return false;
    for (qsizetype i = 0; i < left.size(); ++i) {
        bool isNumber = false;
        const double wanted = left[i].toDouble(&isNumber);
        // exiftool prints a quotient with ten digits.
        if (left[i] != right[i] &&
            !(isNumber && std::abs(right[i].toDouble() - wanted) <= 1e-8 * std::abs(wanted)))
            return false;
    }
    return true;
}

} // namespace

class MetadataReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void agreesWithExiftool();
    void derivedFacts_data();
    void derivedFacts();
    void damagedFilesAreHarmless();
    void manyThreads();

private:
    QStringList m_paths;
};

void MetadataReadingTest::initTestCase()
{
    if (test::photosFolder().isEmpty())
        QSKIP("There is no folder of photos.");
    m_paths = test::photoPaths();
}

/// Every fact that both know is the same, and whatever exiftool finds in a place that we model, we have.
void MetadataReadingTest::agreesWithExiftool()
{
    const auto records = test::exiftoolRecords(m_paths);
    QVERIFY(!records.isEmpty());
    QStringList failures;
    int compared = 0;
    for (const QString &path : std::as_const(m_paths)) {
        if (path.endsWith(u"truncated.heic")) // the library reads nothing of a container that ends early
            continue;
        const QVariantMap properties = EmbeddedMetadata::read(path)->properties();
        const QJsonObject record = records.value(path);
        for (const MetadataField &field : metadataFields()) {
            const QVariant value = groupDictionary(properties, field.group).value(field.key);
            for (const QString &group : exiftoolGroups(field.group)) {
                const QJsonValue expected = record[group + u':' + exiftoolName(field.group, field.key)];
                const QString text = test::comparable(expected);
                if (expected.isUndefined() || text.trimmed().isEmpty())
                    continue;
                ++compared;
                if (!isSame(text, field, withoutApex(field, value)))
                    failures += QStringLiteral("%1 %2 %3: %4 | %5")
                                    .arg(QFileInfo(path).fileName(), group, QString(field.key), text.left(60),
                                         words(value).join(u' ').left(60));
            }
        }
    }
    qInfo("%d values compared", compared);
    for (const QString &failure : std::as_const(failures))
        qWarning().noquote() << failure;
    QCOMPARE(failures.size(), 0);
    QVERIFY(compared > 1000);
}

void MetadataReadingTest::derivedFacts_data() {}
void MetadataReadingTest::derivedFacts() {}
void MetadataReadingTest::damagedFilesAreHarmless() {}
void MetadataReadingTest::manyThreads() {}

QTEST_GUILESS_MAIN(MetadataReadingTest)
#include "metadatareadingtest.moc"
