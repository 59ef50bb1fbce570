// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QPoint>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace plexa::test
{

/// A window of another X client that accepts drops by the protocols of freedesktop.org: it requests the list
/// of files while the pointer rests on it, and again after a drop. Works while the event loop runs.
class DropTarget
{
public:
    enum class Manner {
        TakesFiles,
        SavesDirectly, ///< requests that the source saves into a folder
        Impatient,     ///< does not wait for the files
    };

    /// @param at  the upper left corner on the screen; the window is 200 pixels wide and high
    DropTarget(Manner manner, QByteArray saveUrl, QPoint at)
        : m_manner(manner)
        , m_saveUrl(std::move(saveUrl))
    {
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_x.get())).data;
        const std::uint32_t values[] = {1, XCB_EVENT_MASK_PROPERTY_CHANGE};
        xcb_create_window(m_x.get(), XCB_COPY_FROM_PARENT, m_window, screen->root,
                          static_cast<std::int16_t>(at.x()), static_cast<std::int16_t>(at.y()), 200, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        const std::uint32_t version = 5;
        xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, m_window, atom("XdndAware"), XCB_ATOM_ATOM, 32,
                            1, &version);
        xcb_map_window(m_x.get(), m_window);
        xcb_flush(m_x.get());
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
            while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(m_x.get()), std::free}) {
                handle(*event);
                // A round trip: the server has delivered what was sent.
                reply(xcb_get_input_focus_reply, xcb_get_input_focus(m_x.get()));
            }
        });
        m_timer.start(5);
    }

    /// Whether the drag offers this type.
    bool isOffered(const char *type)
    {
        const xcb_atom_t wanted = atom(type);
        return m_types.contains(QByteArray(reinterpret_cast<const char *>(&wanted), sizeof(wanted)));
    }

    // What it has seen.
    QByteArray whileHovering;
    QByteArray proposedName; ///< of direct saving
    QByteArray data;         ///< the list of files, or the letter
    bool isAccepted = false; ///< a drop would be; the source has the message
    bool isFinished = false;

private:
    template<class T>
    using Reply = std::unique_ptr<T, decltype(&std::free)>;

    template<class T, class Cookie>
    Reply<T> reply(T *(*receive)(xcb_connection_t *, Cookie, xcb_generic_error_t **), Cookie cookie)
    {
        return {receive(m_x.get(), cookie, nullptr), std::free};
    }

    xcb_atom_t atom(const char *name)
    {
        const auto length = static_cast<std::uint16_t>(std::strlen(name));
        return reply(xcb_intern_atom_reply, xcb_intern_atom(m_x.get(), 0, length, name))->atom;
    }

    QByteArray property(xcb_window_t window, xcb_atom_t which)
    {
        const auto found =
            reply(xcb_get_property_reply,
                  xcb_get_property(m_x.get(), 0, window, which, XCB_GET_PROPERTY_TYPE_ANY, 0, 100'000));
        return {static_cast<const char *>(xcb_get_property_value(found.get())),
                xcb_get_property_value_length(found.get())};
    }

    void send(const char *type, std::initializer_list<std::uint32_t> words)
    {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = m_source;
        event.type = atom(type);
        std::copy(words.begin(), words.end(), event.data.data32);
        xcb_send_event(m_x.get(), 0, m_source, 0, reinterpret_cast<const char *>(&event));
    }

    void request(const char *type, std::uint32_t time)
    {
        xcb_convert_selection(m_x.get(), m_window, atom("XdndSelection"), atom(type), atom(type), time);
    }

    void finish()
    {
        if (!std::exchange(isFinished, true))
            send("XdndFinished", {m_window, 1, atom("XdndActionCopy")});
    }

    void drop(std::uint32_t time)
    {
        m_isDropped = true;
        const char *const type = m_manner == Manner::SavesDirectly ? "XdndDirectSave0" : "text/uri-list";
        if (m_manner == Manner::SavesDirectly) {
            proposedName = property(m_source, atom(type));
            xcb_change_property(m_x.get(), XCB_PROP_MODE_REPLACE, m_source, atom(type), atom("text/plain"), 8,
                                static_cast<std::uint32_t>(m_saveUrl.size()), m_saveUrl.constData());
        }
        request(type, time);
        if (m_manner == Manner::Impatient)
            finish();
    }

    void receive(const xcb_selection_notify_event_t &notify)
    {
        QByteArray &received = m_isDropped ? data : whileHovering;
        received = notify.property == XCB_ATOM_NONE ? QByteArray() : property(m_window, notify.property);
        if (m_isDropped)
            finish();
        else
            isAccepted = true;
    }

    void handle(const xcb_generic_event_t &event)
    {
        const int kind = event.response_type & 0x7f;
        if (kind == XCB_SELECTION_NOTIFY)
            receive(reinterpret_cast<const xcb_selection_notify_event_t &>(event));
        if (kind != XCB_CLIENT_MESSAGE)
            return;
        const auto &message = reinterpret_cast<const xcb_client_message_event_t &>(event);
        const std::uint32_t *words = message.data.data32;
        if (message.type == atom("XdndEnter")) {
            m_source = words[0];
            m_types = property(m_source, atom("XdndTypeList")); // of more than three
        } else if (message.type == atom("XdndPosition")) {
            send("XdndStatus", {m_window, 3, 0, 0, atom("XdndActionCopy")});
            if (m_manner != Manner::TakesFiles)
                isAccepted = true;
            else if (whileHovering.isEmpty())
                request("text/uri-list", words[3]);
        } else if (message.type == atom("XdndDrop")) {
            drop(words[2]);
        }
    }

    const Manner m_manner;
    const QByteArray m_saveUrl;
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> m_x{xcb_connect(nullptr, nullptr),
                                                                           xcb_disconnect};
    const xcb_window_t m_window = xcb_generate_id(m_x.get());
    xcb_window_t m_source = XCB_WINDOW_NONE;
    QByteArray m_types; // atoms
    bool m_isDropped = false;
    QTimer m_timer;
};

} // namespace plexa::test
