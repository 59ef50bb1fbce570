// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/sessionrecord.h"
#include "app/workingset.h"
#include "metadata/propertyvalues.h"

using namespace plexa;
using namespace plexa::test;

namespace
{

const QString kQuestion = u"Plexa did not quit properly"_qs;

struct Program {
    explicit Program(WorkingSet &files)
        : app({files.photos, files.defaults, files.alerts, files.store, 2})
        , session(app, files.alerts, std::chrono::milliseconds(1))
    {
        app.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
    }

    ImageObject &photo(std::size_t index) { return *app.imageSet().images()->at(index); }
    /// What is in the file after the last change.
    bool isWritten(const QByteArray &text)
    {
        return QTest::qWaitFor([&] { return contentsOf(SessionRecord::path()).contains(text); });
    }

    AppController app;
    SessionRecord session;
};

} // namespace

class SessionRecordTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void restoresAKilledSession()
    {
        WorkingSet files;
        files.store.wPresetList().append({namedPreset(u"one"_qs), namedPreset(u"two"_qs)});
        const WPresetList &presets = files.store.wPresets();
        ImageMetadata edited;
        const QString received = files.folder.path("received.tif");
        const auto receive = [&received] { return writeFile(received, "x"); };
        QVERIFY(receive());
        {
            Program first(files);
            first.session.begin(); // nothing to ask about
            first.app.companionExchange().adoptTemporaryFiles({received, u"/etc/hostname"_qs});
            QCOMPARE(first.app.companionExchange().temporaryFiles(), QStringList(received));
            first.app.imageSet().addImage(files.photo("a.png"), {});
            first.app.imageSet().addImage(u"/photos/b.jpg"_qs, files.photo("temporary.png"));
            first.app.appliedPresets().addWPresetsToApplied({presets[1], presets[0]});
            QVERIFY(first.photo(0).loadImageFromDisk());
            first.app.imageSet().selection().selectIndexes({0});
            first.app.startBatchOperation(ImageTransform::RotateClockwise);
            QTRY_VERIFY(first.photo(0).turns() != 1);
            first.photo(0).setCustomWatermarkRectOrigin({3, 4.5}, presets[1]);
            first.photo(0).setCustomWatermarkRectOrigin({1, 2}, files.store.quickWPreset());
            first.app.imageSet().moveIndexes({0}, 2);
            QVERIFY(first.isWritten("4.5"));
            MetadataEditing &editing = first.app.metadataEditing();
            editing.setImages({(*first.app.imageSet().images())[1]});
            editing.clear(MetadataClearing::Gps);
            editing.setValue(MetadataProperty::exifFNumber, 2.8);
            editing.setKeywords({}, {u"\u00e4"_qs, u"\"\n"_qs});
            edited = *first.photo(1).metadata();
            edited.setOrientation(1); // as of the file that is read again
            QVERIFY(first.isWritten("2.8"));

            Program other(files); // without a session bus
            other.session.begin();
            other.session.end();
        }
        QVERIFY(receive()); // a program that is killed does not delete it
        {
            Program second(files);
            files.alerts.expect(kQuestion, {0, false});
            second.session.begin();
            QVERIFY(QFile::exists(received));
            QTRY_VERIFY(isIdle(second.app.gathering()));
            QCOMPARE(shownNames(second.app.imageSet()), u"b a"_qs);
            QCOMPARE(second.photo(0).readPath(), files.photo("temporary.png"));
            QCOMPARE(second.photo(1).originalCGImage().size(), QSize(48, 64));
            QCOMPARE(second.photo(1).customWatermarkRectOriginForWPreset(presets[1].get()),
                     std::optional(QPointF(3, 4.5)));
            QCOMPARE(second.photo(1).customWatermarkRectOriginForWPreset(files.store.quickWPreset().get()),
                     std::optional(QPointF(1, 2)));
            QVERIFY(!second.photo(1).customWatermarkRectOriginForWPreset(presets[0].get()));
            const ImageMetadata metadata = *second.photo(1).metadata();
            QVERIFY(
                samePropertyValue(metadata.imagePropertiesDictionary(), edited.imagePropertiesDictionary()));
            QCOMPARE(metadata.clearedGroups(), ClearedGroups(ClearedGroup::Gps));
            QVERIFY(!second.photo(0).editedMetadata());
            QCOMPARE(names(second.app.appliedPresets().wPresetsApplied()), u"two one"_qs);
            // A crash once more, with the same contents.
        }
        QVERIFY(!QFile::exists(received) && receive());
        {
            Program third(files);
            files.alerts.expect(kQuestion, {1, false});
            third.session.begin();
            QVERIFY(third.app.imageSet().images()->empty() && !QFile::exists(SessionRecord::path()));
            third.app.imageSet().addImage(files.photo("a.png"), {});
            QVERIFY(third.isWritten("a.png"));
            third.session.end();
            QVERIFY(!QFile::exists(SessionRecord::path()));
        }
        QVERIFY(!QFile::exists(received));
        Program last(files);
        last.session.begin(); // the third one has quit
        QCOMPARE(files.alerts.complaints(), QStringList());
    }

    void passesOverDamage()
    {
        WorkingSet files;
        using Row = std::tuple<QByteArray, bool, QString>;
        for (const auto &[contents, isAsked, shown] :
             std::initializer_list<Row>{{"", false, {}},
                                        {"{\"photos\": 3}", false, {}},
                                        {"{\"photos\": [", false, {}},
                                        {R"({"photos": [{"path": "a.png"}, 5, [], {}]})", true, {}},
                                        {R"({"applied": [[7, "none"], [], "x", [-9]], "photos": [
                      {"path": "/x.png", "turns": 99, "places": [[0, "none", 1, 2], {}, 3]},
                      {"path": "/y.png", "turns": "a", "places": {"a": 1}, "cleared": [],
                       "metadata": {"{TIFF}": 5, "{IPTC}": {"City": {"a": [null]}}}}]})",
                                         true, u"x y"_qs}}) {
            files.defaults.setObject(settings::imageListIsInBrowserMode, false);
            QVERIFY(writeFile(SessionRecord::path(), contents));
            Program program(files);
            program.app.imageSet().setImageListModeToBrowser(false); // missing files stay
            if (isAsked)
                files.alerts.expect(kQuestion, {0, false});
            program.session.begin();
            QCOMPARE(shownNames(program.app.imageSet()), shown);
            QCOMPARE(files.alerts.complaints(), QStringList());
            QVERIFY(program.app.appliedPresets().wPresetsApplied().empty());
            program.session.end();
        }
    }
};

QTEST_GUILESS_MAIN(SessionRecordTest)
#include "sessionrecord_test.moc"
