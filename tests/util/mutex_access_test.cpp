#include "util/mutex_access.h"

#include <chrono>
#include <future>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/log_recorder.h"
#include "util/error_text.h"

static const char DEADLOCK[] =
    "7: Critical Region Deadlock in Mutex_Access_Start!\n2: +**********Critical Section access deadlock ****** \n";

// Another thread that holds a mutex until it is told to let go.
class Holder {
public:
    explicit Holder (System_Mutex *mutex)
        : thread ([this, mutex] {
              System_Mutex_Wait (mutex, 1000);
              held.set_value ();
              let_go.get_future ().wait ();
              System_Mutex_Release (mutex);
          }) {
        held.get_future ().wait ();
    }

    ~Holder () {
        if (!done) Release ();
    }

    void Release () {
        let_go.set_value ();
        thread.join ();
        done = true;
    }

private:
    std::promise<void> held, let_go;
    std::thread        thread;
    bool               done = false;
};

class MutexAccess : public testing::Test {
protected:
    void TearDown () override {
        Mutex_Access_Install (nullptr, MUTEX_ACCESS_WAIT);
        System_Mutex_Destroy (mutex);
    }

    System_Mutex *mutex = System_Mutex_Create ();
};

static long Milliseconds_Of_Start () {
    auto before = std::chrono::steady_clock::now ();
    Mutex_Access_Start ();
    auto spent = std::chrono::steady_clock::now () - before;
    return static_cast<long> (std::chrono::duration_cast<std::chrono::milliseconds> (spent).count ());
}

TEST_F (MutexAccess, WithoutAMutexNothingHappens) {
    Log_Recorder recorder (9);
    Holder       holder (mutex);
    for (int i = 0; i < 3; i++) Mutex_Access_Start ();
    for (int i = 0; i < 5; i++) Mutex_Access_Stop ();
    EXPECT_EQ (recorder.All (), "");
    EXPECT_EQ (MUTEX_ACCESS_WAIT, 10000);
}

TEST_F (MutexAccess, FreeRegionIsEnteredInSilence) {
    Log_Recorder recorder (9);
    Mutex_Access_Install (mutex, 50);
    Mutex_Access_Start ();
    Mutex_Access_Start (); // The same thread may enter again.
    System_Wait other = SYSTEM_WAIT_FAILED;
    std::thread thread ([&] { other = System_Mutex_Wait (mutex, 0); });
    thread.join ();
    EXPECT_EQ (other, SYSTEM_WAIT_TIMEOUT);
    Mutex_Access_Stop ();
    Mutex_Access_Stop ();
    std::thread after ([&] {
        other = System_Mutex_Wait (mutex, 0);
        System_Mutex_Release (mutex);
    });
    after.join ();
    EXPECT_EQ (other, SYSTEM_WAIT_ENTERED);
    EXPECT_EQ (recorder.All (), "");
}

TEST_F (MutexAccess, StuckRegionIsEnteredAfterTheTwoLines) {
    Log_Recorder recorder (9);
    Holder       holder (mutex);
    Mutex_Access_Install (mutex, 60);
    long spent = Milliseconds_Of_Start ();
    EXPECT_GE (spent, 50);
    EXPECT_LT (spent, 5000);
    EXPECT_EQ (recorder.All (), DEADLOCK);

    Mutex_Access_Stop (); // What another thread holds stays held.
    EXPECT_EQ (System_Mutex_Wait (mutex, 0), SYSTEM_WAIT_TIMEOUT);
    holder.Release ();
    recorder.Clear ();
    Mutex_Access_Start ();
    Mutex_Access_Stop ();
    EXPECT_EQ (recorder.All (), "");
}

TEST_F (MutexAccess, WaitsUntilTheOtherThreadLeaves) {
    Log_Recorder recorder (9);
    Mutex_Access_Install (mutex, 5000);
    std::promise<void> held;
    std::thread        thread ([&] {
        Mutex_Access_Start ();
        held.set_value ();
        std::this_thread::sleep_for (std::chrono::milliseconds (50));
        Mutex_Access_Stop ();
    });
    held.get_future ().wait ();
    EXPECT_LT (Milliseconds_Of_Start (), 4000);
    Mutex_Access_Stop ();
    thread.join ();
    EXPECT_EQ (recorder.All (), "");
}

TEST_F (MutexAccess, ThreadThatEndedInsideLeavesTheRegionToTheNext) {
    Log_Recorder recorder (9);
    std::thread  thread ([&] { System_Mutex_Wait (mutex, 1000); });
    thread.join ();
    Mutex_Access_Install (mutex, 1000);
    Mutex_Access_Start ();
    Mutex_Access_Stop ();
    EXPECT_EQ (recorder.All (), "");
}

static System_Wait Failing_Wait (System_Mutex *, int) {
    System_Last_Error_Set (5);
    return SYSTEM_WAIT_FAILED;
}

TEST_F (MutexAccess, FailedWaitIsReportedWithTheSystemsError) {
    Log_Recorder recorder (9);
    Mutex_Access_Install (mutex, 10, Failing_Wait);
    Mutex_Access_Start ();
    Mutex_Access_Stop ();
    EXPECT_EQ (recorder.All (),
               "2: Failed in WaitForSingleObject \"Protected Region\" (" + std::string (Error_Text (5)) + ")\n");
}
