// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// Of the OpenMP library of LibRaw and libimagequant, for which only its own compiler has a header.
extern "C" {
void omp_set_num_threads(int count);
int omp_get_max_threads(void);
}

namespace plexa
{

/// While it lives, OpenMP starts no threads for library calls on this thread: one thread processes one photo,
/// and OpenMP's threads wait busily for each other. Restores the setting, which belongs to the thread.
class OneOpenMpThread
{
public:
    OneOpenMpThread() { omp_set_num_threads(1); }
    ~OneOpenMpThread() { omp_set_num_threads(m_before); }
    OneOpenMpThread(const OneOpenMpThread &) = delete;
    OneOpenMpThread &operator=(const OneOpenMpThread &) = delete;

private:
    const int m_before = omp_get_max_threads();
};

} // namespace plexa
