#pragma once
// A second thread that works on one job while the caller prepares the next: reading a
// drawing's tags on one core and making its objects on another. One job is in flight
// at a time, so the caller knows which of its buffers are free; what the work throws
// is thrown again to the caller.
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>

namespace dxf {

template <class Job>
class HandOff {
  public:
    explicit HandOff(std::function<void(Job&)> work)
        : work_(std::move(work)), thread_([this] { run(); }) {}
    HandOff(const HandOff&) = delete;
    HandOff& operator=(const HandOff&) = delete;
    // Lets the job in flight finish: it may point into what the caller frees next.
    ~HandOff() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            stop_ = true;
        }
        wake_.notify_one();
        thread_.join();
    }

    // Waits for the job in flight, then hands this one over; gives back the finished
    // one, so that its storage serves again.
    Job submit(Job job) {
        std::unique_lock<std::mutex> lock(mutex_);
        idle_.wait(lock, [this] { return !busy_; });
        rethrow();
        Job finished = std::move(job_);
        job_ = std::move(job);
        busy_ = true;
        lock.unlock();
        wake_.notify_one();
        return finished;
    }

    // Waits until the job in flight is done.
    void wait() {
        std::unique_lock<std::mutex> lock(mutex_);
        idle_.wait(lock, [this] { return !busy_; });
        rethrow();
    }

  private:
    void run() {
        std::unique_lock<std::mutex> lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return busy_ || stop_; });
            if (!busy_) return;
            // After a failure the rest is not worked on: the caller gives up anyway.
            bool failed = error_ != nullptr;
            lock.unlock();
            std::exception_ptr error;
            if (!failed) {
                try {
                    work_(job_);
                } catch (...) {
                    error = std::current_exception();
                }
            }
            lock.lock();
            if (error) error_ = error;
            busy_ = false;
            idle_.notify_all();
        }
    }
    void rethrow() {
        if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
    }

    std::function<void(Job&)> work_;
    std::mutex mutex_;
    std::condition_variable wake_, idle_;
    Job job_{};
    bool busy_ = false, stop_ = false;
    std::exception_ptr error_;
    std::thread thread_;  // last: starts once the rest is ready
};

}  // namespace dxf
