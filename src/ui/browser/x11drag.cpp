// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/x11drag.h"

#include <QGuiApplication>
#include <QSysInfo>
#include <QUrl>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace plexa
{
namespace
{

constexpr std::uint32_t kMaxPropertyWords = 4096; // of 4 bytes; longer than any path

struct Free {
    void operator()(void *reply) const { std::free(reply); }
};
template<class Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

xcb_connection_t *connection()
{
    const auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t *x, const char *name)
{
    const auto cookie = xcb_intern_atom(x, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const ReplyPointer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// The window that represents the source of the drag.
xcb_window_t sourceWindow(xcb_connection_t *x)
{
    const auto cookie = xcb_get_selection_owner(x, atom(x, "XdndSelection"));
    const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(x, cookie, nullptr));
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
}

} // namespace

bool X11Drag::isAvailable()
{
    return connection() != nullptr;
}

bool X11Drag::isButtonHeld()
{
    xcb_connection_t *x = connection();
    if (!x)
        return false;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
    const ReplyPointer<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(x, xcb_query_pointer(x, root), nullptr));
    constexpr unsigned kButtons = XCB_BUTTON_MASK_1 | XCB_BUTTON_MASK_2 | XCB_BUTTON_MASK_3;
    return reply && (reply->mask & kButtons) != 0;
}

void X11Drag::offerName(const QString &filename)
{
    xcb_connection_t *x = connection();
    const xcb_window_t window = x ? sourceWindow(x) : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
    if (window == XCB_WINDOW_NONE)
        return;
    const QByteArray name = filename.toUtf8();
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, window, atom(x, kDirectSaveType), atom(x, "text/plain"), 8,
                        static_cast<std::uint32_t>(name.size()), name.constData());
    xcb_flush(x);
}

QString X11Drag::requestedPath()
{
    xcb_connection_t *x = connection();
    const xcb_window_t window = x ? sourceWindow(x) : static_cast<xcb_window_t>(XCB_WINDOW_NONE);
    if (window == XCB_WINDOW_NONE)
        return {};
    const auto cookie = xcb_get_property(x, 0, window, atom(x, kDirectSaveType), XCB_GET_PROPERTY_TYPE_ANY, 0,
                                         kMaxPropertyWords);
    const ReplyPointer<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    if (!reply || reply->format != 8 || reply->bytes_after != 0)
        return {};
    const QByteArray text(static_cast<const char *>(xcb_get_property_value(reply.get())),
                          xcb_get_property_value_length(reply.get()));
    // Not all targets escape the URL.
    QUrl url = QUrl::fromEncoded(text, QUrl::TolerantMode);
    if (!url.isValid() || !url.isLocalFile())
        return {};
    const QString host = url.host();
    if (!host.isEmpty() && host != QLatin1String("localhost") &&
        host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) != 0)
        return {};
    url.setHost({});
    return url.toLocalFile();
}

} // namespace plexa
