// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// Of the OpenMP library that LibRaw and libimagequant were built with; compilers other than its own have no
// header for it.
extern "C" {
void omp_set_num_threads(int count);
int omp_get_max_threads(void);
}

namespace plexa
{

/// Keeps OpenMP, while it lives, from starting threads for what libraries do on the calling thread: one
/// thread works on one photo here, and OpenMP's wait busily for each other. The setting is the calling
/// thread's own and is put back.
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
