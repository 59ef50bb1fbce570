# SPDX-License-Identifier: GPL-3.0-or-later

# The identity of the program. All other files get it from here.
set(PLEXA_APPLICATION_NAME "Plexa")
set(PLEXA_COMPANY_NAME "Quorvel")
# Names the desktop file, its icon and the D-Bus service.
set(PLEXA_APPLICATION_ID "com.quorvel.Plexa")
set(PLEXA_WEB_SITE "https://www.quorvel.com")
set(PLEXA_MAIL "support@quorvel.com")
