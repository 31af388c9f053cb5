#include "meter/Hardware.h"

#include "meter/Setup.h"

#include <limits>
#include <utility>

namespace {

constexpr double alphaOfCopper = 0.00393; // 1/K; the simulated object is made of copper

/** By which part a resistance at @p temperature is above that at the reference temperature. */
double excess(double alpha, float temperature)
{
    return alpha * double(temperature - Setup::referenceTemperature);
}

} // namespace

Hardware::Hardware(const Setup &setup, QObject *parent) : QObject(parent), m_setup(setup)
{
    connect(&m_timer, &QTimer::timeout, this, [this] { deliver(measure()); });
}

bool Hardware::start(int interval, Receiver &receiver)
{
    if (isRunning())
        return false;
    m_receiver = &receiver;
    m_random.seed(1);
    m_timer.start(interval);
    return true;
}

void Hardware::stop()
{
    m_timer.stop();
    if (Receiver *receiver = std::exchange(m_receiver, nullptr))
        receiver->end();
}

void Hardware::deliver(float value)
{
    if (m_receiver)
        m_receiver->receive(value);
}

QStringList Hardware::serialNumbers()
{
    return {QStringLiteral("JD10233"), QStringLiteral("CH20417"), QStringLiteral("EL20590"),
            QStringLiteral("JB20871"), QStringLiteral("DV42006"), QStringLiteral("DW44019")};
}

float Hardware::measure()
{
    const TestObject &object = m_setup.testObject();
    if (object.leads == TestObject::Open)
        return std::numeric_limits<float>::quiet_NaN();
    if (m_setup.quantity() == Quantity::Temperature)
        return object.temperature * (1 + noise());

    auto value = double(object.inductance);
    if (m_setup.quantity() == Quantity::Resistance)
        value = double(object.resistance) * (1 + excess(alphaOfCopper, object.temperature));
    if (m_setup.isCompensated())
        value /= 1 + excess(m_setup.alpha(), object.temperature);
    if (object.leads == TestObject::Reversed)
        value = -value;
    return float(value) * (1 + noise());
}

float Hardware::noise()
{
    // The sum of three uniform random numbers is close enough to a normal distribution.
    double sum = 0;
    for (int draw = 0; draw < 3; ++draw)
        sum += m_random.generateDouble() - 0.5;
    return float(sum) * m_setup.testObject().noise / 100;
}
