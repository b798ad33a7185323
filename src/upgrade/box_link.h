// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>
#include <memory>

/// What a box can be told.
enum class BoxOrder {
    Activate, ///< change over to the package that it has received
    Restart,  ///< reboot
};

/// The way to boxes: everything that an upgrade says to one goes through here, so that it can go to
/// a box on the network or to a model of one.
class BoxLink
{
public:
    BoxLink() = default;
    virtual ~BoxLink() = default;
    BoxLink(const BoxLink&) = delete;
    BoxLink& operator=(const BoxLink&) = delete;

    /// Called once for each request, later, never from within it: what the box answered, as text;
    /// empty when no answer came within the link's limit, and its error when it answered with one.
    using Answered = std::function<void(const QString& answer)>;

    virtual void read(const QString& ip, const QString& parameter, Answered answered) = 0;
    virtual void write(const QString& ip, const QString& parameter, const QString& value,
                       Answered answered) = 0;
    /// Without a limit: whoever began it gives it up. `file` is a path on this computer.
    virtual void upload(const QString& ip, const QString& file, Answered answered) = 0;
    /// Gives up an upload to `ip` that is under way; its Answered follows.
    virtual void abandonUpload(const QString& ip) = 0;
    /// Without a limit for Activate: a box may take all the time of its change to answer.
    virtual void order(const QString& ip, BoxOrder order, Answered answered) = 0;
};

/// Hears answers until it is told to forget what was asked, or is gone.
class BoxListener
{
public:
    /// `handle` is called with the answer, unless forget() comes first.
    template <class Handler> BoxLink::Answered hear(Handler handle) const
    {
        return
            [open = std::weak_ptr<int>(m_open), handle = std::move(handle)](const QString& answer) {
                if (!open.expired())
                    handle(answer);
            };
    }
    void forget() { m_open = std::make_shared<int>(); }

private:
    std::shared_ptr<int> m_open = std::make_shared<int>();
};
