// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/messageboxalerts.h"

#include "ui/widgets/linebreaks.h"

#include <QApplication>
#include <QCheckBox>
#include <QCoreApplication>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>

namespace plexa
{

namespace
{

QString iconOf(Alert::Style style)
{
    switch (style) {
    case Alert::Style::Informational:
        return QStringLiteral(":/icons/info.svg");
    case Alert::Style::Warning:
        return QStringLiteral(":/icons/warning.svg");
    case Alert::Style::Critical:
        break;
    }
    return QStringLiteral(":/icons/critical.svg");
}

constexpr int kIconSide = 40;
constexpr int kTextWidth = 320;
constexpr int kMaxWidth = 520; // of what cannot be wrapped

/// Paths can be so long that the buttons would not fit on the screen. What is too wide for a line loses its
/// middle: a path that has the line to itself, or a word.
QString shortened(const QString &text, const QFontMetrics &metrics)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines) {
        const bool isPath = line.startsWith(QLatin1Char('/'));
        QStringList parts = isPath ? QStringList(line) : line.split(QLatin1Char(' '));
        for (QString &part : parts)
            part = metrics.elidedText(part, Qt::ElideMiddle, kMaxWidth);
        line = parts.join(QLatin1Char(' '));
    }
    return lines.join(QLatin1Char('\n'));
}

/// Names of files stand in the texts, and must not be taken for markup.
void keepPlain(QMessageBox &box)
{
    for (QLabel *const label : box.findChildren<QLabel *>())
        label->setTextFormat(Qt::PlainText);
    if (auto *const title = box.findChild<QLabel *>(QStringLiteral("qt_msgbox_label"))) {
        QFont font = title->font();
        font.setBold(true);
        title->setFont(font);
        title->setMinimumWidth(kTextWidth);
    }
}

} // namespace

AlertAnswer MessageBoxAlerts::run(const Alert &alert)
{
    if (QThread::currentThread() == thread())
        return show(alert);
    std::packaged_task<AlertAnswer()> question([this, &alert] { return show(alert); });
    std::future<AlertAnswer> answer = question.get_future();
    {
        const std::lock_guard lock(m_mutex);
        m_questions.push_back(std::move(question));
    }
    QMetaObject::invokeMethod(this, "askNext", Qt::QueuedConnection);
    return answer.get();
}

void MessageBoxAlerts::askNext()
{
    std::packaged_task<AlertAnswer()> question;
    {
        const std::lock_guard lock(m_mutex);
        question = std::move(m_questions.front());
        m_questions.pop_front();
    }
    question();
}

AlertAnswer MessageBoxAlerts::show(const Alert &alert)
{
    if (m_isSilent)
        return {std::max(alert.escapeButton, 0), false};
    // Dialogs may be about to be deleted.
    QWidget *const active = QApplication::activeWindow();
    const bool isOnActive = active && active->windowType() == Qt::Window;
    QMessageBox box(isOnActive ? active : m_window && m_window->isVisible() ? m_window : nullptr);
    box.setWindowTitle(QCoreApplication::applicationName());
    box.setIconPixmap(
        QIcon(iconOf(alert.style)).pixmap(QSize(kIconSide, kIconSide), box.devicePixelRatioF()));
    box.setText(withLineBreaks(alert.title));
    box.setInformativeText(shortened(alert.text, box.fontMetrics()));
    keepPlain(box);
    QList<QPushButton *> buttons;
    for (const QString &text : alert.buttons)
        buttons.append(box.addButton(text, QMessageBox::ActionRole));
    if (buttons.isEmpty())
        buttons.append(box.addButton(QMessageBox::Ok));
    box.setDefaultButton(buttons.first());
    if (alert.escapeButton >= 0 && alert.escapeButton < buttons.size())
        box.setEscapeButton(buttons[alert.escapeButton]);
    QCheckBox *suppression = nullptr;
    if (alert.hasSuppressionBox) {
        suppression = new QCheckBox(alert.suppressionText.isEmpty() ? tr("Do not ask me again")
                                                                    : alert.suppressionText);
        box.setCheckBox(suppression);
    }
    box.exec();
    // A box that was closed without an answer is answered as by the Escape key.
    const qsizetype pressed = buttons.indexOf(static_cast<QPushButton *>(box.clickedButton()));
    return {static_cast<int>(pressed >= 0 ? pressed : std::max(alert.escapeButton, 0)),
            suppression && suppression->isChecked()};
}

} // namespace plexa
