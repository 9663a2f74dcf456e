// Identifiers of the resources that the component uses; the resource compiler reads this file too.
#pragma once

#define IDI_QUORVANE 201
