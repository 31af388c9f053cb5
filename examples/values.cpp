// Values as the device's screen shows them: ohms come in from the measuring hardware (here:
// standard input, one number a line, then the test current in amperes), texts go out.

#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

#include <QCoreApplication>
#include <QTextStream>

using ValueBox::NumericalValueBox;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    KTV_DataSource meter;
    // The tables of the model round the values.
    meter.setMeterSerialName(QStringLiteral("CH20417"));
    // Units have texts only once somebody has given them: these are the usual ones.
    NumericalValueBox::prepareStaticDefaultValue(ValueBox::Temp_Celsius);

    QTextStream in(stdin);
    QTextStream out(stdout);
    NumericalValueBox box(ValueBox::Unit_Ohm, ValueBox::Round_R);
    float ohms = 0;
    float amperes = 0;
    while (!(in >> ohms >> amperes).atEnd()) {
        box.setRealValue(ohms, NumericalValueBox::roundTestIValue(amperes));
        // "---" for what the current cannot measure, "> ..." for what is beyond the range.
        out << box.toString() << Qt::endl;
    }

    // And back: what a user has typed becomes a number in the base unit.
    out << NumericalValueBox::getValue(QStringLiteral("1.5 m")) << Qt::endl;
}
