// Kirvo has one codec for the whole process: one thread at a time.
#pragma once

namespace kirvo_files {

class KirvoLock {
  public:
    KirvoLock();
    ~KirvoLock();
    KirvoLock(const KirvoLock&) = delete;
    KirvoLock& operator=(const KirvoLock&) = delete;
};

} // namespace kirvo_files
