// Values as the device's screen shows them. Input are ohms from the measuring hardware (here:
// standard input; each line has a number and the test current in amperes), output are texts.

#include <datasource/KTV_DataSource.h>
#include <valuebox/NumericalValueBox.h>

#include <QCoreApplication>
#include <QTextStream>

using ValueBox::NumericalValueBox;

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    KTV_DataSource meter;
    // The rounding tables of the model.
    meter.setMeterSerialName(QStringLiteral("CH20417"));
    // Units have no texts until they are set: these are the usual ones.
    NumericalValueBox::prepareStaticDefaultValue(ValueBox::Temp_Celsius);

    QTextStream in(stdin);
    QTextStream out(stdout);
    NumericalValueBox box(ValueBox::Unit_Ohm, ValueBox::Round_R);
    float ohms = 0;
    float amperes = 0;
    while (!(in >> ohms >> amperes).atEnd()) {
        box.setRealValue(ohms, NumericalValueBox::roundTestIValue(amperes));
        // "---" for a current that the model does not have, "> ..." for a value above the range.
        out << box.toString() << Qt::endl;
    }

    // And back: a text that a user has typed becomes a number in the base unit.
    out << NumericalValueBox::getValue(QStringLiteral("1.5 m")) << Qt::endl;
}
