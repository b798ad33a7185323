// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <mutex>
#include <optional>

namespace sim
{

/// What can be wrong with a box. The words are those of scenario files and of kora-lan's commands.
enum class FaultKind {
    Slow,          ///< "slow": answers after `amount` ms (1000)
    Silent,        ///< "silent": takes the request and never answers
    Refuse,        ///< "refuse": its web ports are closed, though it still answers ping
    HangUp,        ///< "hang-up": closes after `amount` percent of the reply (50); 0: says nothing
    Stall,         ///< "stall": says nothing more after `amount` percent of the reply (50)
    Garbage,       ///< "garbage": the reply is not JSON
    NotAnObject,   ///< "not-an-object": the reply is JSON, but an array
    EmptyReply,    ///< "empty": the reply has no content
    HttpError,     ///< "http-error": HTTP status `amount` (500)
    HugeReply,     ///< "huge": the reply is `amount` bytes long (10 MB)
    HugeHead,      ///< "huge-head": the reply has `amount` lines before its body (5000); 0: no end
    Endless,       ///< "endless": the reply never ends; `amount` bytes/s (0: as fast as it goes)
    Packed,        ///< "packed": the reply unpacks to `amount` bytes (100 MB)
    Chatter,       ///< "chatter": the reply comes `amount` times (1000); 0: without end
    Misnamed,      ///< "misnamed": actions are answered as if they were `text`
    ValueAsNumber, ///< "number": "value" is a JSON number
    ValueAsArray,  ///< "array": "value" is a JSON array
    ValueMissing,  ///< "no-value": "value" is left out
    Unknown,       ///< "unknown": has no such parameter, neither to read nor to write
    Text,          ///< "text": "value", and what feeds and lists carry, is `text` (hostile text)
    Fail,          ///< "fail": writes and actions end in the status `text` ("failed")
    Mistake,       ///< "mistake": stores `text` in place of what is written
    LateAnswer, ///< "late": writes and actions are done at once, answered after `amount` ms (5000)
    NoAnswer,   ///< "unanswered": writes and actions are done at once, but never answered
    WrongMd5,   ///< "wrong-md5": the upload's digest is a wrong one
    CutUpload,  ///< "cut-upload": closes after `amount` percent of the upload (60)
    Throttle,   ///< "throttle": uploads and downloads run at `amount` bytes/s (100,000)
    NoRanges,   ///< "no-ranges": sends files from their beginning, whatever part is asked for
    OtaSlow,    ///< "ota-slow": answers on, unchanged, for `amount` ms (30,000) before it goes
    OtaStaysAway,     ///< "ota-stays-away": never comes back from the firmware change
    OtaOldVersion,    ///< "ota-old-version": comes back with the version it had
    OtaFallsBack,     ///< "ota-falls-back": comes back with the version `text`
    OtaLosesSettings, ///< "ota-loses-settings": comes back with the settings of the factory
    OtaResets,        ///< "ota-resets": the settings named in `text` come back as from the factory
    OtaMoves,         ///< "ota-moves": comes back under the address `text`
    HugeMessage,      ///< "huge-message": the feeds' messages are `amount` bytes long (20 MB)
    EndlessHandshake, ///< "endless-handshake": the feeds' greeting goes on and on
    RefusedHandshake, ///< "refused-handshake": the feeds let nobody in
    Flood,            ///< "flood": both event feeds send `amount` messages a second (2000)
    NoPing,           ///< "no-ping": does not answer ping, though everything else works
};

/// One fault of one box.
struct Fault {
    FaultKind kind = FaultKind::Slow;
    /// Where it strikes: a parameter name, an action, or one of "read", "write", "config",
    /// "control", "upload", "media", "web", "live"; several joined with "+" must all hold
    /// ("write+eParam_NDIName"). Empty: everywhere.
    QString target;
    qint64 amount = -1; ///< see the kind; below 0: the default in brackets there
    QString text;       ///< see the kind; empty: the default
    int strikes = -1;   ///< how many times it strikes until it is spent; below 0: always

    /// `amount`, or the kind's default.
    qint64 amountOrDefault() const;
};

/// The word of a kind, e.g. "hang-up".
QString faultWord(FaultKind kind);
/// All words, in the order of FaultKind.
QStringList faultWords();

/// Reads "slow 3000 on reboot times 2", "fail eParam_NDIName", "ota-moves 127.77.0.99". After the
/// kind a number is the amount, "on" names the target, "times" the number of strikes and "as"
/// begins a text that runs to the end. A bare word is the text for "ota-moves", "ota-falls-back"
/// and, any number of them, "ota-resets", which must have one; else it is the target.
/// No value when the line is not understood; `error` then tells why.
std::optional<Fault> parseFault(const QString& line, QString* error = nullptr);
/// The line that parseFault() reads back as `fault`.
QString faultLine(const Fault& fault);

/// A text with everything in it that a careless program trips over: markup, quotes, placeholders,
/// line breaks, control and right-to-left characters, and a good length.
QString hostileText();

/// The faults of one box. All functions may be called from any thread.
class FaultList
{
public:
    void add(const Fault& fault);
    void clear();
    void clear(FaultKind kind);
    QVector<Fault> all() const;
    /// Whether such a fault without a target is set.
    bool has(FaultKind kind) const;
    /// The first fault of this kind whose target fits what is going on (`tags`), counted as one
    /// strike.
    std::optional<Fault> strike(FaultKind kind, const QStringList& tags);

private:
    mutable std::mutex m_mutex;
    QVector<Fault> m_faults; // guarded by m_mutex
};

} // namespace sim
