// The numbers of the guide's texts.
#pragma once

#define IDS_WELCOME 1 // the resource compiler reads this file too
