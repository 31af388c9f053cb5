#pragma once

#include "pages/Page.h"

class FieldButton;
class Plot;
class TouchButton;
class TouchList;

/** A series of measurements, seen while it grows, and saved in the client's folder. */
class RecordPage : public Page
{
    Q_OBJECT
public:
    RecordPage(Texts &texts, Session &session);

private:
    void layOut();
    void refresh();
    void showSeries();
    void toggle();
    void save();
    void tellSaved(const SeriesFile::Result &result);
    void chooseClient(const std::function<void()> &then);
    void chooseInterval();
    void chooseCount();

    Recorder &recorder() const { return session().recorder(); }

    Plot *m_plot;
    TouchList *m_table;
    QLabel *m_what;
    QLabel *m_status;
    FieldButton *m_client;
    FieldButton *m_interval;
    FieldButton *m_count;
    TouchButton *m_start;
    TouchButton *m_save;
};
