// SPDX-License-Identifier: MIT
// The settings that a box tells before an upgrade: what it answers, in the order in which it is
// asked.
#include "common/box_protocol.h"
#include "fuzz/fuzz.h"
#include "upgrade/kept_settings.h"
#include "upgrade/settings_reader.h"

namespace
{

const QString mac = QStringLiteral("02:4B:4F:00:00:01");

class Clock final : public UpgradeClock
{
public:
    qint64 ms() const override { return m_ms; }
    QDateTime date() const override { return {}; }
    int tickMs() const override { return 1; }
    void tick() { ++m_ms; }

private:
    qint64 m_ms = 0;
};

/// The box: answers with the next line of the input, later. What it is asked is filled in for "%1".
class Box final : public BoxLink
{
public:
    explicit Box(Input& input) : m_input(input) {}

    void read(const QString&, const QString& parameter, Answered answered) override
    {
        REQUIRE(!m_answered);
        m_asked = parameter;
        m_answered = std::move(answered);
    }
    void write(const QString&, const QString&, const QString&, Answered) override
    {
        REQUIRE(false);
    }
    void upload(const QString&, const QString&, Answered) override { REQUIRE(false); }
    void abandonUpload(const QString&) override { REQUIRE(false); }
    void order(const QString&, BoxOrder, Answered) override { REQUIRE(false); }

    void answer()
    {
        if (!m_answered)
            return;
        const Answered answered = std::move(m_answered);
        m_answered = nullptr;
        QString line = QString::fromUtf8(m_input.line());
        // Short words for what a good box says, so that an input can get far.
        if (line == QLatin1String("ok"))
            line = m_asked == BoxProtocol::MACAddress
                       ? QStringLiteral(R"({"param_name":"%1","value":"%2"})")
                       : QStringLiteral(R"({"param_name":"%1","value":"1"})");
        else if (line == QLatin1String("none"))
            line = QStringLiteral(R"({"param_name":"%1"})");
        answered(BoxProtocol::fill(line, {m_asked, mac}));
    }

private:
    Input& m_input;
    QString m_asked;
    Answered m_answered;
};

void require(const QVariantMap& values, bool whole)
{
    const QStringList names = BoxProtocol::configurationParameters();
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        REQUIRE(names.contains(it.key()) && KeptSettings::isValue(*it));
    REQUIRE(!whole || !values.isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const int options = input.number();
    constexpr int limitTicks = 200;
    Clock clock;
    Box box(input);
    SettingsReader reader(box, clock);
    int ends = 0;
    reader.start(QStringLiteral("192.0.2.7"), options & 1 ? QString() : mac, limitTicks,
                 [&ends](const QVariantMap& values, bool whole) {
                     ++ends;
                     require(values, whole);
                 });
    for (int tick = 0; tick < limitTicks + 2; ++tick) {
        if (options & 2 && tick == options >> 2 && reader.isReading())
            reader.hurry(limitTicks / 4);
        clock.tick();
        reader.tick();
        box.answer();
    }
    // Whatever the box says, its upgrade goes on.
    REQUIRE(ends == 1 && !reader.isReading());
    return 0;
}
