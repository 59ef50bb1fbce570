// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QList>
#include <QPoint>

#include <xcb/xcb.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <thread>

namespace plexa::test
{

/// A window of another X client, on a thread of its own, that accepts drops by the protocols of
/// freedesktop.org: it requests the list of files while the pointer rests on it, and again after a drop.
class DropTarget
{
public:
    enum class Manner {
        TakesFiles,
        SavesDirectly, ///< asks the source to save into a folder
        Impatient,     ///< does not wait for the files
    };

    struct Seen {
        QList<QByteArray> offers;
        QByteArray whileHovering;
        QByteArray proposedName; ///< of direct saving
        QByteArray data;         ///< the list of files, or the letter
        bool isAccepted = false; ///< a drop would be; the source has the message
        bool isFinished = false;
    };

    /// @param at  the upper left corner on the screen; the window is 200 pixels wide and high
    DropTarget(Manner manner, QByteArray saveUrl, QPoint at)
        : m_manner(manner)
        , m_saveUrl(std::move(saveUrl))
        , m_x(xcb_connect(nullptr, nullptr))
    {
        const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(m_x)).data;
        m_window = xcb_generate_id(m_x);
        const std::uint32_t values[] = {1, XCB_EVENT_MASK_PROPERTY_CHANGE};
        xcb_create_window(m_x, XCB_COPY_FROM_PARENT, m_window, screen->root,
                          static_cast<std::int16_t>(at.x()), static_cast<std::int16_t>(at.y()), 200, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        const std::uint32_t version = 5;
        xcb_change_property(m_x, XCB_PROP_MODE_REPLACE, m_window, atom("XdndAware"), XCB_ATOM_ATOM, 32, 1,
                            &version);
        xcb_map_window(m_x, m_window);
        xcb_flush(m_x);
        m_thread = std::thread([this] { run(); });
    }

    ~DropTarget()
    {
        m_isEnded = true;
        m_thread.join();
        xcb_disconnect(m_x);
    }

    Seen seen() const
    {
        const std::lock_guard lock(m_mutex);
        return m_seen;
    }

private:
    using Words = std::uint32_t[5];

    /// The reply to a request; freed with the pointer.
    template<class Reply, class Cookie>
    auto replyTo(Reply reply, Cookie cookie)
    {
        return std::unique_ptr<std::remove_pointer_t<decltype(reply(m_x, cookie, nullptr))>,
                               decltype(&std::free)>(reply(m_x, cookie, nullptr), std::free);
    }

    xcb_atom_t atom(const char *name)
    {
        const auto length = static_cast<std::uint16_t>(std::strlen(name));
        return replyTo(xcb_intern_atom_reply, xcb_intern_atom(m_x, 0, length, name))->atom;
    }

    QByteArray property(xcb_window_t window, xcb_atom_t which)
    {
        const auto reply =
            replyTo(xcb_get_property_reply,
                    xcb_get_property(m_x, 0, window, which, XCB_GET_PROPERTY_TYPE_ANY, 0, 100'000));
        return reply ? QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                                  xcb_get_property_value_length(reply.get()))
                     : QByteArray();
    }

    void send(const char *type, const Words &words)
    {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = m_source;
        event.type = atom(type);
        std::memcpy(event.data.data32, words, sizeof(words));
        xcb_send_event(m_x, 0, m_source, 0, reinterpret_cast<const char *>(&event));
    }

    void ask(const char *type, std::uint32_t time)
    {
        xcb_convert_selection(m_x, m_window, atom("XdndSelection"), atom(type), atom(type), time);
    }

    void finish()
    {
        send("XdndFinished", {m_window, 1, atom("XdndActionCopy"), 0, 0});
        m_seen.isFinished = true;
    }

    void enter(const std::uint32_t *words)
    {
        m_source = words[0];
        QByteArray types(reinterpret_cast<const char *>(words + 2), 12);
        if (words[1] & 1)
            types = property(m_source, atom("XdndTypeList"));
        for (qsizetype i = 0; i + 4 <= types.size(); i += 4) {
            xcb_atom_t type{};
            std::memcpy(&type, types.constData() + i, 4);
            const auto name = replyTo(xcb_get_atom_name_reply, xcb_get_atom_name(m_x, type));
            m_seen.offers.append(
                QByteArray(xcb_get_atom_name_name(name.get()), xcb_get_atom_name_name_length(name.get())));
        }
    }

    void drop(std::uint32_t time)
    {
        m_isDropped = true;
        if (m_manner == Manner::SavesDirectly) {
            m_seen.proposedName = property(m_source, atom("XdndDirectSave0"));
            xcb_change_property(m_x, XCB_PROP_MODE_REPLACE, m_source, atom("XdndDirectSave0"),
                                atom("text/plain"), 8, static_cast<std::uint32_t>(m_saveUrl.size()),
                                m_saveUrl.constData());
            ask("XdndDirectSave0", time);
            return;
        }
        ask("text/uri-list", time);
        if (m_manner == Manner::Impatient)
            finish();
    }

    void handle(const xcb_generic_event_t &event)
    {
        const int kind = event.response_type & 0x7f;
        if (kind == XCB_SELECTION_NOTIFY) {
            const auto &notify = reinterpret_cast<const xcb_selection_notify_event_t &>(event);
            const QByteArray data =
                notify.property == XCB_ATOM_NONE ? QByteArray() : property(m_window, notify.property);
            if (!m_isDropped) {
                m_seen.whileHovering = data;
                m_seen.isAccepted = true;
                return;
            }
            m_seen.data = data;
            if (!m_seen.isFinished)
                finish();
        }
        if (kind != XCB_CLIENT_MESSAGE)
            return;
        const auto &message = reinterpret_cast<const xcb_client_message_event_t &>(event);
        const std::uint32_t *words = message.data.data32;
        if (message.type == atom("XdndEnter")) {
            enter(words);
        } else if (message.type == atom("XdndPosition")) {
            send("XdndStatus", {m_window, 3, 0, 0, atom("XdndActionCopy")});
            if (m_manner != Manner::TakesFiles)
                m_seen.isAccepted = true;
            else if (m_seen.whileHovering.isEmpty())
                ask("text/uri-list", words[3]);
        } else if (message.type == atom("XdndDrop")) {
            drop(words[2]);
        }
    }

    void run()
    {
        using namespace std::chrono_literals;
        while (!m_isEnded) {
            xcb_generic_event_t *event = xcb_poll_for_event(m_x);
            if (!event) {
                std::this_thread::sleep_for(5ms);
                continue;
            }
            const std::lock_guard lock(m_mutex);
            handle(*event);
            // A round trip: the server has passed on what was sent.
            replyTo(xcb_get_input_focus_reply, xcb_get_input_focus(m_x));
            std::free(event);
        }
    }

    const Manner m_manner;
    const QByteArray m_saveUrl;
    xcb_connection_t *const m_x;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_window_t m_source = XCB_WINDOW_NONE;
    bool m_isDropped = false;
    mutable std::mutex m_mutex;
    Seen m_seen; // guarded by m_mutex
    std::atomic<bool> m_isEnded = false;
    std::thread m_thread;
};

} // namespace plexa::test
