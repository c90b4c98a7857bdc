// Mapwright: map projections and datum conversion.
// Everything a host uses: the string class, the reference-system,
// coordinate and conversion classes and their records, the Basalt
// functions, the two dialogs, and the platform calls a host or a test may
// need (profile and registry functions, message boxes, language).
#ifndef MAPWRIGHT_MAPWRIGHT_H
#define MAPWRIGHT_MAPWRIGHT_H

#include <mapwright/wintypes.h>
#include <mapwright/afxstr.h>
#include <mapwright/codepage.h>
#include <mapwright/profile.h>
#include <mapwright/registry.h>
#include <mapwright/resources.h>
#include <mapwright/winuser.h>

#include <mapwright/afxwin.h>

#include <mapwright/basalt.h>
#include <mapwright/basalt_controls.h>

#include <mapwright/GeoRecords.h>
#include <mapwright/GeoReferenceData.h>
#include <mapwright/GeoCoord.h>
#include <mapwright/GeoTransform.h>
#include <mapwright/dialogs.h>

#endif
