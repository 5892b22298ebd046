// The window of logged time that an explorer shows, and what its commands do to it.
#pragma once

#include "logger/LoggerPeriod.h"
#include "siblings/tools/ZRDateTime.h"

namespace zr::logger {

// One day, week, month, quarter or year, read at one sample period. Decides; loads and shows nothing itself. UI thread
// only.
//
// Setup first, then any command. Each command that moves the window ends in SetupData, which asks the host to load.
class LoggerWindow {
public:
    // The explorer around it. Not owned; must outlive this.
    class Host {
    public:
        // The members are set: the data are to be grouped at samplePeriod, and before that, with select, to be read
        // anew for the window. Returns when the viewer has them.
        virtual void Load(bool select) = 0;
        // What the automatic period stands for at that unit.
        virtual ZRDateTimeSpan GetSamplePeriodIfAutomatic(unsigned groupBy) = 0;
        // Shows a text by number, as an error with an OK button.
        virtual void ShowMessage(unsigned text) = 0;
        // Lets the user choose a date. False unless it ended with OK; chosen may be no date even then.
        virtual bool ChooseDate(const COleDateTime& offered, ZRDateTime& chosen) = 0;

    protected:
        ~Host() = default;
    };

    // firstDayOfWeek: as ZRDateTime::DayOfWeek(); 0: that of the locale in force whenever it is asked for.
    explicit LoggerWindow(Host& host, int firstDayOfWeek = 0) : m_host(host), m_firstDayOfWeek(firstDayOfWeek) {}

    int groupBy = 0;
    ZRDateTime dateFrom;  // first instant of the window; no date until the first SetupData
    ZRDateTime dateTo;    // first instant after it
    ZRDateTimeSpan samplePeriod;

    // The present week at 30 minutes. Loads nothing.
    void Setup();

    // Takes a date, a unit and a period: the window becomes the unit that holds the date, or that ends there when the
    // date is a boundary, but the present one for a date in a later unit. Nothing happens when all three are those in
    // force, unless force is set; a new period alone only groups anew.
    void SetupData(const ZRDateTime& date, int newGroupBy, const ZRDateTimeSpan& period, bool force);

    // SetupData at the period in force. The automatic one is worked out for the unit, and back in its place afterwards:
    // the viewer sees a real period, the window stays automatic.
    void SetupDataAtPeriod(const ZRDateTime& date, int newGroupBy, bool force);

    void OnPrevious();
    void OnNext();
    void OnGoTo();
    // Meant: the choice is written to the registry before anything is tested, so that a refused one is still recorded.
    void OnGroupByMenuItem(unsigned id);
    void OnPeriodMenuItem(unsigned id);
    // Whether Next is to be offered: only while the window ends strictly before the present moment.
    [[nodiscard]] bool UpdateNext() const;

    // True after the user was told that the period is too long for the unit.
    bool BadCombination(unsigned unit, int seconds);

private:
    [[nodiscard]] ZRDateTime Adjusted(const ZRDateTime& date, int unit) const;
    [[nodiscard]] ZRDateTime Added(const ZRDateTime& date, int unit) const;
    [[nodiscard]] int FirstDayOfWeek() const;
    // The common ending of the commands that move the window.
    void MoveTo(const ZRDateTime& date);

    Host& m_host;
    int m_firstDayOfWeek;
};

}  // namespace zr::logger
