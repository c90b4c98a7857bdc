// Resource ids of Mapwright.rc: dialogs, their controls, and the string table.
// The numbers never change; hosts may hold them.
#ifndef MAPWRIGHT_UI_RESOURCE_H
#define MAPWRIGHT_UI_RESOURCE_H

// Dialog templates.
#define IDD_PR_CHOOSE 817       // projection choice
#define IDD_PR_AND_GEOID 818    // projection and geoid
#define IDD_CONTROL_POINTS 819  // carried, opened by nothing here

// Controls of the projection dialogs.
#define IDC_PROJECTION 800
#define IDC_PARAM1 801
#define IDC_PARAM2 802
#define IDC_PARAM3 803
#define IDC_PARAM4 804
#define IDC_PARAM5 805
#define IDC_ELLIPSOID 806
#define IDC_DATUM 807
#define IDC_PROJECTION_GROUP 808
#define IDC_PARAMS_GROUP 809
#define IDC_ELLIPSOID_LABEL 810
#define IDC_DATUM_LABEL 811
#define IDC_PARAM1_LABEL 812
#define IDC_PARAM2_LABEL 813
#define IDC_PARAM3_LABEL 814
#define IDC_PARAM4_LABEL 815
#define IDC_PARAM5_LABEL 816
#define IDC_GEOID_HEIGHT 820
#define IDC_GEOID_HEIGHT_LABEL 821
#define IDC_GEOID_FILE 822
// These two are control ids, not strings: the table has no 886 or 887.
#define IDC_CUSTOM_HEIGHT 886
#define IDC_HEIGHT_FROM_FILE 887

// The string table's ids: one header that the layers below ui/ include too.
#include "../refsys/string_ids.h"

#endif
