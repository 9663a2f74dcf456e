// Identifiers of the library's resources; the resource compiler reads this file too.
#pragma once

#define IDS_PROJECT_NAME 100
#define IDI_QUORVANE 201
