// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// The support that most tests need.
#include "support/photofolder.h"
#include "support/programs.h"
#include "support/testfolder.h"
