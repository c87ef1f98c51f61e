#include "acl/wizard/switch_reader.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace acl::wizard {

// What a worker shares with its slot; kept alive by both and by every row in flight, so a
// worker that outlives the page's wait touches nothing of the page.
struct SwitchReader::Job {
    std::mutex mutex;              // a post and the page's closing never overlap
    HWND hwnd = nullptr;           // null once the page takes no more posts
    SwitchReader* slot = nullptr;  // page thread only; null once the slot let the job go
    unsigned nSerial = 0;
    std::atomic<bool> stop{false};
    ReadFn read;
};

namespace {

constexpr UINT WM_ACL_READER = WM_APP + 0x31;  // lParam owns a Posted

struct Posted {
    std::shared_ptr<SwitchReader::Job> job;
    bool bDone = false;  // the worker's last post: its reading has ended
    AclType type = AclType::kEthernet;
    AclRecord record;
    AclSummaryLine line;
};

std::atomic<unsigned> g_nSerial{0};
std::atomic<long> g_nPostsToClosed{0};
std::atomic<long> g_nLiveWorkers{0};

void Post(SwitchReader::Job& job, Posted* posted) {
    std::lock_guard<std::mutex> lock(job.mutex);
    if (job.hwnd == nullptr) {
        delete posted;
        return;
    }
    if (!PostMessageA(job.hwnd, WM_ACL_READER, 0, reinterpret_cast<LPARAM>(posted))) {
        ++g_nPostsToClosed;
        delete posted;
    }
}

void RunJob(std::shared_ptr<SwitchReader::Job> job) {
    AclReadOptions options;
    options.stop = &job->stop;
    options.sink = [&job](AclType type, const AclRecord& record, const AclSummaryLine& line) {
        Post(*job, new Posted{job, false, type, record, line});
    };
    job->read(options);
    Post(*job, new Posted{job, true, AclType::kEthernet, {}, {}});
}

// The worker holds a reference on the module whose code it runs (counted in LiveWorkers from
// its creation, so the module never answers that it may unload while a worker runs) and lets
// it go only as the thread ends: a worker that outlives the wizard never runs in an unloaded
// module.
DWORD WINAPI Worker(LPVOID param) {
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCSTR>(&Worker), &self);
    auto* handed = static_cast<std::shared_ptr<SwitchReader::Job>*>(param);
    std::shared_ptr<SwitchReader::Job> job = std::move(*handed);
    delete handed;
    RunJob(std::move(job));
    --g_nLiveWorkers;
    if (self) FreeLibraryAndExitThread(self, 0);
    return 0;
}

// The slot lets its job go: the job's rows still in the queue are dropped on arrival.
void Release(std::shared_ptr<SwitchReader::Job>& job, HANDLE& thread, bool detachWindow) {
    if (job) {
        if (detachWindow) {
            std::lock_guard<std::mutex> lock(job->mutex);
            job->hwnd = nullptr;
        }
        job->slot = nullptr;
        job.reset();
    }
    if (thread) {
        CloseHandle(thread);
        thread = nullptr;
    }
}

}  // namespace

SwitchReader::~SwitchReader() {
    if (m_job) m_job->stop = true;
    Release(m_job, m_hThread, true);
}

bool SwitchReader::IsRunning() const {
    DWORD code = 0;
    return m_hThread && GetExitCodeThread(m_hThread, &code) && code == STILL_ACTIVE;
}

bool SwitchReader::Start(HWND hwndPage, ReadFn read) {
    if (IsRunning()) {
        // Never two threads of a slot: the running one ends at its next answer, its rows are
        // dropped, and this reading starts when it has ended.
        m_job->stop = true;
        m_nShownSerial = 0;
        m_hwndPending = hwndPage;
        m_pending = std::move(read);
        return false;
    }
    Release(m_job, m_hThread, false);  // ended, its last rows not yet delivered: dropped
    // A reading put off earlier is for a device no longer current: this one replaces it.
    m_pending = nullptr;
    m_hwndPending = nullptr;
    Launch(hwndPage, std::move(read));
    return m_hThread != nullptr;
}

void SwitchReader::Launch(HWND hwndPage, ReadFn read) {
    auto job = std::make_shared<Job>();
    job->hwnd = hwndPage;
    job->slot = this;
    job->nSerial = ++g_nSerial;
    job->read = std::move(read);
    auto* param = new std::shared_ptr<Job>(job);
    ++g_nLiveWorkers;
    m_hThread = CreateThread(nullptr, 0, Worker, param, 0, nullptr);
    if (!m_hThread) {
        --g_nLiveWorkers;
        delete param;
        job->slot = nullptr;
        return;
    }
    m_nShownSerial = job->nSerial;
    m_job = std::move(job);
}

void SwitchReader::Stop() {
    if (m_job) m_job->stop = true;
    m_pending = nullptr;
    m_hwndPending = nullptr;
}

// The worker of `job` has posted its last message.
void SwitchReader::Ended(const std::shared_ptr<Job>& job) {
    if (job != m_job) return;
    WaitForSingleObject(m_hThread, 1000);  // its last act was that post
    const bool shown = job->nSerial == m_nShownSerial;
    Release(m_job, m_hThread, false);
    if (m_pending) {
        ReadFn read = std::move(m_pending);
        m_pending = nullptr;
        Launch(m_hwndPending, std::move(read));
        return;
    }
    if (shown && m_onDone) m_onDone();
}

void SwitchReader::StopAll(const std::vector<SwitchReader*>& slots) {
    for (SwitchReader* s : slots) s->Stop();
}

void SwitchReader::StopAndWait(const std::vector<SwitchReader*>& slots, DWORD waitMs) {
    std::vector<HANDLE> running;
    for (SwitchReader* s : slots) {
        s->Stop();
        if (s->m_hThread) running.push_back(s->m_hThread);
    }
    // One deadline for all: leaving never waits longer than waitMs, however many slots.
    if (!running.empty())
        WaitForMultipleObjects(static_cast<DWORD>(running.size()), running.data(), TRUE, waitMs);
    // A worker still running keeps its slot (so no second one starts) and ends on its own.
    for (SwitchReader* s : slots)
        if (s->m_hThread && !s->IsRunning()) Release(s->m_job, s->m_hThread, false);
}

void SwitchReader::DropPosted(HWND hwndPage) {
    MSG msg;
    while (PeekMessageA(&msg, hwndPage, WM_ACL_READER, WM_ACL_READER, PM_REMOVE))
        delete reinterpret_cast<Posted*>(msg.lParam);
}

void SwitchReader::Close(const std::vector<SwitchReader*>& slots, HWND hwndPage, DWORD waitMs) {
    StopAndWait(slots, waitMs);
    for (SwitchReader* s : slots) Release(s->m_job, s->m_hThread, true);
    DropPosted(hwndPage);
}

bool SwitchReader::Deliver(UINT msg, WPARAM, LPARAM lParam) {
    if (msg != WM_ACL_READER) return false;
    std::unique_ptr<Posted> posted(reinterpret_cast<Posted*>(lParam));
    if (!posted || !posted->job) return true;
    SwitchReader* slot = posted->job->slot;
    if (slot == nullptr) return true;
    if (posted->bDone) {
        slot->Ended(posted->job);
    } else if (posted->job->nSerial == slot->m_nShownSerial && slot->m_onRow) {
        slot->m_onRow(posted->type, posted->record, posted->line);
    }
    return true;
}

long SwitchReader::PostsToClosedWindows() { return g_nPostsToClosed; }
long SwitchReader::LiveWorkers() { return g_nLiveWorkers; }

}  // namespace acl::wizard
