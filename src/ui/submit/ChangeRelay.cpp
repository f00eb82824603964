#include "ui/submit/ChangeRelay.h"

#include "foundation/MainThread.h"

#include <utility>

ChangeRelay::ChangeRelay(std::function<void()> apply) : m_state(std::make_shared<State>())
{
    m_state->apply = std::move(apply);
}

ChangeRelay::~ChangeRelay()
{
    unfollow();
    m_state->apply = nullptr;
}

void ChangeRelay::unfollow()
{
    for (const QMetaObject::Connection& connection : std::as_const(m_connections))
        QObject::disconnect(connection);
    m_connections.clear();
}

void ChangeRelay::State::changed(const std::shared_ptr<State>& state)
{
    const auto call = [state] {
        state->isPosted = false;
        if (state->apply)
            state->apply();
    };
    if (MainThread::isCurrent())
        call();
    else if (!state->isPosted.exchange(true))
        MainThread::post(call);
}
