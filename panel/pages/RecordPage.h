#pragma once

#include "pages/Page.h"

#include <QTime>
#include <QVector>

class FieldButton;
class Plot;
class TouchButton;
class TouchList;

/** A series of measurements, seen while it grows, and saved in the client's folder. */
class RecordPage : public Page
{
    Q_OBJECT
public:
    explicit RecordPage(Context &context);

    void enter() override;
    void leave() override;

private:
    struct Entry
    {
        QTime time;
        float value;
        QString text;
    };

    void layOut();
    void load();
    void store();
    void refresh();
    void showSeries();
    void toggle();
    void takeReading(float value);
    void forgetSeries();
    void chooseClient();
    void chooseInterval();
    void chooseCount();
    void save();
    QByteArray csv() const;

    Plot *m_plot;
    TouchList *m_table;
    QLabel *m_what;
    QLabel *m_status;
    FieldButton *m_client;
    FieldButton *m_interval;
    FieldButton *m_count;
    TouchButton *m_start;
    TouchButton *m_save;

    QString m_clientName;
    int m_intervalMs = 0;
    int m_wanted = 0;
    bool m_isRecording = false;
    QVector<Entry> m_series;
};
