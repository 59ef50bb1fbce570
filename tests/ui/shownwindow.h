// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/appcontroller.h"
#include "app/workingset.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/imagelistview.h"
#include "ui/widgets/commandactions.h"
#include "ui/window/mainwindow.h"

#include <QAction>
#include <QTest>

namespace plexa::test
{

/// The main window with its working set, shown.
struct ShownWindow {
    ShownWindow()
    {
        window.resize(1180, 740); // on any screen
        window.show();
        window.activateWindow();
        active = QTest::qWaitForWindowActive(&window); // keys go nowhere else
    }

    template<class Widget>
    Widget &find(const char *name)
    {
        return *window.findChild<Widget *>(QLatin1String(name));
    }

    void addPhotos(const QStringList &names)
    {
        for (const QString &name : names)
            set.addImage(files.photo(name), {});
    }

    bool isEnabled(ActionId id) const { return window.actions().action(id)->isEnabled(); }

    WorkingSet files;
    AppController controller{{files.photos, files.defaults, files.alerts, files.store, 2}};
    ImageSet &set = controller.imageSet();
    bool active = false;
    mutable MainWindow window{{controller, files.defaults, files.alerts, 2}};
    ImageBrowserView &grid = find<ImageBrowserView>("imageBrowser");
    ImageListView &table = find<ImageListView>("imageListTable");
};

} // namespace plexa::test
