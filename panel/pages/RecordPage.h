#pragma once

#include "common/Page.h"

#include <functional>

class Choice;
class FieldButton;
class Plot;
class TouchButton;
class QGridLayout;
class QStackedWidget;
class TouchList;
class VerdictLabel;

/**
 * Records a series of measurements in the client's folder, and shows its curve, statistics and
 * values.
 */
class RecordPage : public Page
{
    Q_OBJECT
public:
    RecordPage(Texts &texts, Session &session);

    void enter() override { refreshSeries(); }

private:
    void layOut();
    bool isThere() const; ///< whether there is a series, perhaps still without readings
    void refresh();
    QWidget *makeFigures();
    void addFigure(QGridLayout *grid, const Text &captionText, const char *name);
    void refreshSeries();
    void takeReading();
    void plot(int index);
    void plotAnew();
    void refreshAxes();
    void refreshFigures();
    void refreshVerdict();
    void refreshStatus();
    void readPoint(double seconds);
    void toggle();
    void save();
    void showSaved(const SeriesFile::Result &result);
    void chooseClient(const std::function<void()> &then);
    void chooseInterval();
    void chooseCount();

    Recorder &recorder() const { return session().recorder(); }

    Plot *m_plot;
    Choice *m_view;
    QStackedWidget *m_views;
    TouchList *m_table;
    QLabel *m_what;
    QLabel *m_status;
    VerdictLabel *m_verdict;
    QLabel *m_reason;
    QVector<QLabel *> m_figures; ///< count, minimum, maximum, mean, standard deviation
    FieldButton *m_client;
    FieldButton *m_interval;
    FieldButton *m_count;
    TouchButton *m_start;
    TouchButton *m_save;
    int m_plotted = 0; ///< number of readings in the plot
};
