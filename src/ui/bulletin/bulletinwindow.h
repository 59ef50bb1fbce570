// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>
#include <QUrl>
#include <QWebEngineProfile>

class QCheckBox;
class QStackedLayout;
class QWebEngineLoadingInfo;
class QWebEngineView;

namespace plexa
{

/// The window with a bulletin: its page, a box to suppress it, and a button to close it.
class BulletinWindow final : public QDialog
{
    Q_OBJECT

public:
    /// @param page  http or https
    BulletinWindow(const QUrl &page, bool allowSuppress);
    ~BulletinWindow() override;

    static constexpr QSize kSize{600, 350};

Q_SIGNALS:
    void closed(bool isSuppressed);

private:
    void loadingChanged(const QWebEngineLoadingInfo &info);
    void closeView();

    QWebEngineProfile m_profile; // without a name: off the record
    QStackedLayout *const m_stack;
    QWebEngineView *const m_webView;
    QCheckBox *const m_suppressCheckbox;
    bool m_wasLoaded = false;
};

} // namespace plexa
