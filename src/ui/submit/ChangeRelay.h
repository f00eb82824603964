#pragma once

#include <QList>
#include <QObject>

#include <atomic>
#include <functional>
#include <memory>

// Brings "something changed" from objects that change on any thread to the main thread, where `apply` is called: inside
// the change when it is made there, else soon after, once for all changes made meanwhile. Made, used and destroyed on
// the main thread; after its end nothing is called any more.
class ChangeRelay
{
public:
    explicit ChangeRelay(std::function<void()> apply);
    ~ChangeRelay();
    ChangeRelay(const ChangeRelay&) = delete;
    ChangeRelay& operator=(const ChangeRelay&) = delete;

    template <typename Sender>
    void follow(const Sender& sender, void (Sender::*signal)())
    {
        m_connections.append(QObject::connect(&sender, signal, [state = m_state] { State::changed(state); }));
    }
    // Follows nothing any more; what is under way is still told.
    void unfollow();

private:
    struct State
    {
        static void changed(const std::shared_ptr<State>& state);

        std::atomic<bool> isPosted = false;
        std::function<void()> apply; // main thread
    };

    std::shared_ptr<State> m_state;
    QList<QMetaObject::Connection> m_connections;
};
