// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appcontroller.h"
#include "app/appdelegate.h"
#include "app/workingset.h"

#include <QSignalSpy>

#include <sys/stat.h>
#include <sys/time.h>

using namespace plexa;
using namespace plexa::test;

namespace
{

const QString kBanner = u"Quorvel exchange info file version 1.0"_qs;

/// The user's desktop, except for the browser.
class RecordingWorkspace final : public Workspace
{
public:
    bool hasApplication(const QString &id) const override { return desktopWorkspace().hasApplication(id); }
    bool openFiles(const QStringList &paths, const QString &id) override
    {
        ++calls;
        return !isBroken && desktopWorkspace().openFiles(paths, id);
    }
    void openUrl(const QUrl &url) override { urls.append(url); }

    bool isBroken = false;
    int calls = 0;
    QList<QUrl> urls;
};

struct Fixture {
    Fixture()
    {
        qputenv("TMPDIR", files.folder.path("tmp").toUtf8());
        QDir().mkpath(files.folder.path("tmp"));
        start();
        const auto mark = namedPreset(u"mark"_qs);
        mark->setType(u"Image"_qs);
        mark->setImage(WatermarkPicture::fromImage(flatPicture({20, 20}, Qt::red)));
        app->appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
        app->appliedPresets().addWPresetsToApplied({mark});
    }
    ~Fixture() { qunsetenv("TMPDIR"); }

    void start()
    {
        app.emplace(
            AppController::Services{files.photos, files.defaults, files.alerts, files.store, 2, workspace});
    }
    QString temporary(const QString &name = {}) const { return files.folder.path(u"tmp/"_qs + name); }
    /// A folder of a companion with these pictures, without an info file.
    QString exchange(const QStringList &names)
    {
        QDir().mkpath(temporary(u"theirs"_qs));
        for (const QString &name : names)
            flatPicture({64, 48}, Qt::red).save(temporary(u"theirs/"_qs + name), "PNG");
        return temporary(u"theirs/"_qs);
    }
    void open(const QString &info)
    {
        AppDelegate({files.defaults, files.alerts, *app, {}}).openFiles({info, info + u".tif"_qs});
    }
    ImageSet &set() { return app->imageSet(); }
    bool isIdleSoon()
    {
        return QTest::qWaitFor([this] { return isIdle(app->gathering()); }, 60'000);
    }

    WorkingSet files;
    RecordingWorkspace workspace;
    std::optional<AppController> app;
};

QByteArray list(const QStringList &strings)
{
    return "<?xml version=\"1.0\"?><plist version=\"1.0\"><array><string>" +
           strings.join(u"</string><string>").toUtf8() + "</string></array></plist>";
}

} // namespace

class CompanionExchangeTest : public QObject
{
    Q_OBJECT

    // GIO keeps the first folder that it has seen.
    TestFolder m_home;
    const QString m_arguments = m_home.path("arguments");

    bool install()
    {
        const QString program = m_home.path("stub");
        return writeFile(program, "#!/bin/sh\nprintf '%s\\n' \"$@\" > \"$0.tmp\"\n"
                                  "mv \"$0.tmp\" \"${0%stub}arguments\"\n") &&
               QFile(program).setPermissions(QFile::ReadOwner | QFile::ExeOwner) &&
               writeFile(m_home.path("XDG_DATA_HOME/applications/com.quorvel.Brevix.desktop"),
                         "[Desktop Entry]\nType=Application\nName=Brevix\nExec=\"" + program.toUtf8() +
                             "\" %F\n");
    }

private Q_SLOTS:
    void initTestCase()
    {
        QDir().mkpath(m_home.path("XDG_DATA_HOME/applications"));
        QVERIFY(!desktopWorkspace().hasApplication(u"com.quorvel.Brevix"_qs));
    }

    void offersMissingCompanion()
    {
        Fixture f;
        f.set().addImage(f.files.photo("a.png"), {});
        for (const int button : {0, 1}) {
            f.files.alerts.expect(u"Could not open images in Brevix!"_qs, {button, false});
            f.app->openInCompanionApplication(AppController::Photos::All);
        }
        QCOMPARE(f.files.alerts.complaints(), QStringList());
        QCOMPARE(f.files.alerts.shown().first().buttons, (QStringList{u"Get Brevix"_qs, u"Close"_qs}));
        QCOMPARE(f.workspace.urls, QList{QUrl(u"https://www.quorvel.com/brevix"_qs)});
        QVERIFY(!f.app->batchSave().isSavingInProgress() && namesIn(f.temporary()).isEmpty());
    }

    void sendsCopies()
    {
        QVERIFY(install());
        QTRY_VERIFY(desktopWorkspace().hasApplication(u"com.quorvel.Brevix"_qs)); // GIO has noticed it
        Fixture f;
        const QStringList photos{f.files.photo("a & b.png"), f.files.photo(u"\u00e9.png"_qs)};
        for (const QString &photo : photos)
            f.set().addImage(photo, {});
        QSignalSpy finished(&f.app->batchSave(), &BatchSave::finished);
        f.app->openInCompanionApplication(AppController::Photos::All);
        // Photos that arrive meanwhile are added afterwards.
        const QString theirs = f.exchange({u"img0001.tif"_qs});
        QVERIFY(
            writeFile(theirs + u"info.qtxf"_qs, list({kBanner, theirs + u"img0001.tif"_qs, u"/c.jpg"_qs})));
        f.open(theirs + u"info.qtxf"_qs);
        QCOMPARE(shownNames(f.set()), u"a & b \u00e9"_qs);
        QVERIFY(finished.wait() && f.app->batchSave().isForCompanion());
        QCOMPARE(shownNames(f.set()), u"a & b \u00e9 c"_qs);
        QTRY_VERIFY(QFile::exists(m_arguments));

        const QStringList sent = QString::fromUtf8(contentsOf(m_arguments)).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(sent.size(), 3);
        const QString folder = QFileInfo(sent[0]).path();
        QVERIFY(QFileInfo(folder).path() == QDir(f.temporary()).path() &&
                QFileInfo(folder).fileName().startsWith(u"qpxtempexchangedir."));
        QCOMPARE(sent, (QStringList{folder + u"/info.qtxf"_qs, folder + u"/img0001.tif"_qs,
                                    folder + u"/img0002.tif"_qs}));
        QCOMPARE(QFileInfo(folder).permissions() & 0x77, QFile::Permissions());
        QCOMPARE(namesIn(folder).size(), 3);
        // Another reader of property lists.
        const QByteArray read =
            outputOf(u"python3"_qs, {u"-c"_qs,
                                     u"import plistlib,sys; print(*plistlib.load(open("
                                     "sys.argv[1],'rb'),fmt=plistlib.FMT_XML),sep='\\n')"_qs,
                                     sent[0]});
        QCOMPARE(QString::fromUtf8(read).trimmed().split(u'\n'),
                 (QStringList{kBanner, sent[1], photos[0], sent[2], photos[1]}));
        for (const QString &copy : {sent[1], sent[2]})
            QVERIFY(contentsOf(copy).startsWith("II*"));

        // The companion may still need its files when this program ends; an empty folder nobody needs.
        f.app.reset();
        QCOMPARE(namesIn(folder).size(), 3);
        for (const QString &file : sent)
            QVERIFY(QFile::remove(file));
        f.start();
        QTRY_VERIFY(!QFile::exists(folder));
        QCOMPARE(f.files.alerts.complaints(), QStringList());
    }

    /// The folder goes with a hand-over that fails, or that the end of the program cancels.
    void removesFoldersOfFailedHandOvers()
    {
        Fixture f;
        f.set().addImage(f.files.photo("a.png"), {});
        QSignalSpy finished(&f.app->batchSave(), &BatchSave::finished);
        f.workspace.isBroken = true;
        f.files.alerts.expect(u"Could not open images in Brevix!"_qs, {1, false});
        f.app->openInCompanionApplication(AppController::Photos::All);
        QCOMPARE(namesIn(f.temporary()).size(), 1);
        QVERIFY(finished.wait());
        QVERIFY(f.workspace.calls == 1 && namesIn(f.temporary()).isEmpty());
        f.app->openInCompanionApplication(AppController::Photos::All);
        f.app->companionExchange().cancelHandOver();
        QVERIFY(finished.wait());
        QVERIFY(f.workspace.calls == 1 && namesIn(f.temporary()).isEmpty());
        QCOMPARE(f.files.alerts.complaints(), QStringList());
    }

    void receivesPhotos()
    {
        Fixture f;
        const QString theirs = f.exchange({u"img0001.tif"_qs, u"img0002.tif"_qs, u"extra.tif"_qs});
        const QString own = f.files.photo("own.png");
        const QString info = theirs + u"info.qtxf"_qs;
        QVERIFY(writeFile(
            info, list({kBanner, theirs + u"img0001.tif"_qs, u"/photos/one.jpg"_qs,
                        theirs + u"img0002.tif"_qs, u"/photos/two.psd"_qs,
                        // These are the user's, whatever the list says.
                        own, u"/photos/three.jpg"_qs, theirs + u"extra.tif"_qs, theirs + u"extra.tif"_qs})));
        f.set().filterImages(u"nothing"_qs);
        f.open(info);
        QVERIFY(!QFile::exists(info) && f.isIdleSoon());
        QCOMPARE(shownNames(f.set()), u"one two three extra"_qs);
        const ImageObject &first = *f.set().images()->front();
        QCOMPARE(first.path(), u"/photos/one.jpg"_qs);
        QCOMPARE(first.readPath(), theirs + u"img0001.tif"_qs);
        QVERIFY(first.isLoaded() && f.set().selection().selectedIndexes() == IndexList({0}));
        QCOMPARE(namesIn(theirs).size(), 3);
        f.app.reset();
        QCOMPARE(namesIn(theirs), QStringList(u"extra.tif"_qs));
        QVERIFY(QFile::exists(own));
        QCOMPARE(f.files.alerts.complaints(), QStringList());
    }

    /// An info file beside the user's photos deletes none of them.
    void deletesTemporaryFilesOnly()
    {
        Fixture f;
        const QTemporaryDir home(QCoreApplication::applicationDirPath() + u"/photos-XXXXXX"_qs);
        const QString photo = home.filePath(u"a.png"_qs);
        QVERIFY(flatPicture({64, 48}).save(photo));
        QVERIFY(writeFile(home.filePath(u"info.qtxf"_qs), list({kBanner, photo, u"/other.jpg"_qs})));
        f.open(home.filePath(u"info.qtxf"_qs));
        QVERIFY(f.isIdleSoon());
        QCOMPARE(shownNames(f.set()), u"other"_qs);
        f.app.reset();
        QCOMPARE(namesIn(home.path()), QStringList(u"a.png"_qs));
    }

    void refusesHostileInfoFiles()
    {
        constexpr char wrong[] = "ERROR: wrong exchange info file!";
        constexpr char incompatible[] = "ERROR: incompatible companion application version!";
        constexpr char ignored[] = "ignored a pair of the exchange info file: ";
        struct Row {
            QByteArray contents;
            const char *logged;
            QString shown;
        };
        const auto texts = [](const char *all) { return list(words(all)); };
        const QByteArray banner = kBanner.toUtf8();
        const Row rows[] = {
            {"", wrong, {}},
            {"no list", wrong, {}},
            {texts("/a.tif"), wrong, {}},
            {list({kBanner, u"/a.tif"_qs}), wrong, {}},
            {list({kBanner, u"/a.tif"_qs, u"/a.jpg"_qs, u"/b.tif"_qs}), wrong, {}},
            {"<plist><dict><key>" + banner + "</key><string>/a.tif</string></dict></plist>", wrong, {}},
            {"<plist><string>" + banner + "</string></plist>", wrong, {}},
            {"<plist><array><string>" + banner +
                 "</string><integer>1</integer><string>/a</string></array></plist>",
             wrong,
             {}},
            {"<!DOCTYPE plist [<!ENTITY a \"/a\">]><plist><array><string>" + banner +
                 "</string><string>&a;</string><string>&a;</string></array></plist>",
             wrong,
             {}},
            {list({kBanner + u'.', u"/a.tif"_qs, u"/a.jpg"_qs}), incompatible, {}},
            {list({kBanner, u"/dev/zero"_qs, u"/a.jpg"_qs}), ignored, {}},
            {list({kBanner, u"/tmp"_qs, u"/a.jpg"_qs}), ignored, {}},
            {list({kBanner, u"/a.tif"_qs, u"/dev/zero"_qs}), ignored, {}},
            {list({kBanner, u"a.tif"_qs, u"a.jpg"_qs, u"/b.tif"_qs, u"/b.jpg"_qs}), ignored, u"b"_qs},
        };
        Fixture f;
        f.set().setImageListModeToBrowser(false); // missing files stay until they are selected
        for (const auto &[contents, logged, shown] : rows) {
            const QString info = f.files.folder.path("info.qtxf");
            QVERIFY(writeFile(info, contents));
            QTest::ignoreMessage(logged == ignored ? QtWarningMsg : QtCriticalMsg,
                                 QRegularExpression(u'^' + QString::fromLatin1(logged)));
            f.open(info);
            QVERIFY2(!QFile::exists(info), contents.constData());
            QCOMPARE(shownNames(f.set()), shown);
        }
        // A pipe without a writer.
        const QString pipe = f.files.folder.path("info.qtxf");
        QVERIFY(::mkfifo(qUtf8Printable(pipe), 0600) == 0);
        QTest::ignoreMessage(QtCriticalMsg, wrong);
        f.open(pipe);
        QVERIFY(!QFile::exists(pipe));
        QCOMPARE(f.files.alerts.complaints(), QStringList());
    }

    /// More than the grid holds change to the table without a question, in one step.
    void receivesManyPhotos()
    {
        Fixture f;
        QStringList strings{kBanner};
        for (int i = 0; i < 10'000; ++i)
            strings << u"/missing/%1.tif"_qs.arg(i) << u"/photos/%1.jpg"_qs.arg(i);
        const QString info = f.files.folder.path("info.qtxf");
        QVERIFY(writeFile(info, list(strings)));
        QVERIFY(f.set().imageListIsInBrowserMode());
        QSignalSpy inserted(&f.set(), &ImageSet::imagesInserted);
        f.open(info);
        QVERIFY(!f.set().imageListIsInBrowserMode());
        QCOMPARE(inserted.count(), 1);
        QVERIFY(f.isIdleSoon());
        QCOMPARE(f.set().images()->size(), 10'000U);
        QCOMPARE(f.files.alerts.complaints(), QStringList());
    }

    void removesLeftovers()
    {
        Fixture f;
        f.app.reset();
        const auto make = [&](const QString &name, bool isUnfinished) {
            const QString folder = f.temporary(u"qpxtempexchangedir."_qs + name);
            writeFile(folder + u"/img0001.tif"_qs, "picture");
            if (isUnfinished)
                writeFile(folder + u"/.unfinished"_qs, "");
            return folder;
        };
        make(u"killed"_qs, true);
        make(u"handed"_qs, false);
        QDir().mkpath(f.temporary(u"qpxtempexchangedir.empty1"_qs));
        const QString old = make(u"oldone"_qs, false);
        const timeval times[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        QVERIFY(::utimes(qUtf8Printable(old), times) == 0);
        const auto running = ExchangeFolder::make();
        QVERIFY(running);
        ExchangeFolder::removeLeftovers();
        QStringList kept{u"qpxtempexchangedir.handed"_qs, QFileInfo(running->path()).fileName()};
        kept.sort();
        QStringList found = namesIn(f.temporary());
        found.sort();
        QCOMPARE(found, kept);
    }
};

QTEST_GUILESS_MAIN(CompanionExchangeTest)
#include "companionexchange_test.moc"
