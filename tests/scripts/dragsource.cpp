// SPDX-License-Identifier: GPL-3.0-or-later

#include <QApplication>
#include <QDrag>
#include <QLabel>
#include <QMimeData>
#include <QUrl>

namespace
{

/// A small window from which files can be dragged, as from a file manager.
class DragSource final : public QLabel
{
public:
    explicit DragSource(const QStringList &paths)
        : QLabel(QStringLiteral("files"))
        , m_paths(paths)
    {
        setWindowTitle(QStringLiteral("Drag source"));
        setAlignment(Qt::AlignCenter);
    }

protected:
    void mousePressEvent(QMouseEvent *) override
    {
        auto *const data = new QMimeData;
        QList<QUrl> urls;
        for (const QString &path : m_paths)
            urls.append(QUrl::fromLocalFile(path));
        data->setUrls(urls);
        auto *const drag = new QDrag(this);
        drag->setMimeData(data);
        drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    }

private:
    const QStringList m_paths;
};

} // namespace

/// Usage: drag_source X Y PATH...
int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    DragSource source(arguments.mid(3));
    source.setGeometry(arguments.at(1).toInt(), arguments.at(2).toInt(), 80, 40);
    source.show();
    return QApplication::exec();
}
