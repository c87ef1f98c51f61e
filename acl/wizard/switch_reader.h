// A reader slot of a wizard page: at most one worker thread at a time walks a switch's ACL
// tables through the ACL core's reader. The worker never touches a window: it posts each row
// to the page, and the row reaches the slot's handler on the page's own thread (the page's
// message handler passes every message to SwitchReader::Deliver). Stopping is cooperative:
// the walk ends at its next answer; a worker still running when the wait ends is left to end
// on its own, and from then on it posts nothing, so no thread touches a closed page.
#pragma once
#include <windows.h>

#include <functional>
#include <vector>
#include <memory>

#include "acl/acl_device.h"

namespace acl::wizard {

class SwitchReader {
public:
    // Runs on the worker: the core's ReadProfiles or ReadRules with these options (its stop
    // flag and row sink). It must hold its inputs by value, never refer to the page.
    using ReadFn = std::function<void(const AclReadOptions& options)>;
    // On the page's thread, one call per row, in reading order.
    using RowFn = std::function<void(AclType type, const AclRecord& record, const AclSummaryLine& line)>;
    // On the page's thread, when the reading whose rows the page shows has ended.
    using DoneFn = std::function<void()>;

    SwitchReader() = default;
    ~SwitchReader();
    SwitchReader(const SwitchReader&) = delete;
    SwitchReader& operator=(const SwitchReader&) = delete;

    void OnRow(RowFn fn) { m_onRow = std::move(fn); }
    void OnDone(DoneFn fn) { m_onDone = std::move(fn); }

    // Reads on a new worker thread that posts to `hwndPage`; rows of earlier readings are
    // dropped from now on. While this slot's thread still runs, no second one starts: the
    // running one is asked to stop and `read` starts when it has ended. Only the last reading
    // asked for ever runs: it replaces any reading put off before. Returns whether a thread
    // started now.
    bool Start(HWND hwndPage, ReadFn read);
    bool IsRunning() const;
    // Asks the running worker to end at its next answer; rows it already read still arrive.
    void Stop();

    // Leaving a page: every slot is asked to stop (and its put-off reading dropped); nothing
    // waits, a running worker keeps its slot until it has ended.
    static void StopAll(const std::vector<SwitchReader*>& slots);
    // Stops every slot at once and waits at most `waitMs` in all for their threads; a worker
    // still running then keeps its slot, so none starts beside it, and ends on its own. A
    // reading put off by Start is dropped.
    static void StopAndWait(const std::vector<SwitchReader*>& slots, DWORD waitMs);
    // The page's window goes (the wizard closes): StopAndWait, then no worker of these slots
    // posts to the window again, and rows posted but never delivered are freed.
    static void Close(const std::vector<SwitchReader*>& slots, HWND hwndPage, DWORD waitMs);
    // In the page's message handler: true when `msg` was a reader's (and it was handled).
    static bool Deliver(UINT msg, WPARAM wParam, LPARAM lParam);
    // Posts that found the page's window gone (it must stay 0), and the workers of all slots
    // still running (the module stays loaded while there are any; the tests watch both).
    static long PostsToClosedWindows();
    static long LiveWorkers();

    struct Job;

private:
    static void DropPosted(HWND hwndPage);
    void Launch(HWND hwndPage, ReadFn read);
    void Ended(const std::shared_ptr<Job>& job);

    RowFn m_onRow;
    DoneFn m_onDone;
    HANDLE m_hThread = nullptr;
    std::shared_ptr<Job> m_job;      // of the thread in m_hThread
    unsigned m_nShownSerial = 0;     // the reading whose rows the page shows
    HWND m_hwndPending = nullptr;    // a reading put off until the running one ends
    ReadFn m_pending;
};

}  // namespace acl::wizard
