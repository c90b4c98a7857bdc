// A reference system in the per-user registry: seven string values of one
// key. Only the kind, the datum index and the parameters are stored; the
// ellipsoid and datum values come back from the catalogs by the datum index.
#include <cstring>
#include <string>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/basalt.h>
#include <mapwright/registry.h>
#include <mapwright/winuser.h>

#include "basalt/basalt_ids.h"
#include "refsys/kinds.h"
#include "refsys/numtext.h"

namespace {

struct Values {
    int kind = Geographic;
    int datum = 3;
    double scale = 1.0;
    double c_lon = 0.0;
    double lat_origin = 0.0;
    int fe = 0;
    int fn = 0;
};

void ShowSaveFailure() { MessageBoxA(nullptr, GetResourceString(IDS_SETTINGS_NOT_SAVED), " ", MB_OK); }

// The value's text, or `fallback` when it is missing, empty or too long for
// the 256-byte buffer.
std::string QueryText(HKEY key, const char* name, const char* fallback) {
    BYTE data[256];
    DWORD size = sizeof data;
    DWORD type = 0;
    if (RegQueryValueExA(key, name, nullptr, &type, data, &size) != ERROR_SUCCESS || size == 0) return fallback;
    return std::string(reinterpret_cast<const char*>(data), size);
}

Values ReadValues(const CString& path) {
    Values v;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) != ERROR_SUCCESS) return v;
    v.kind = mw::AtoI(QueryText(key, "ProjectionIndex", "1").c_str());
    v.datum = mw::AtoI(QueryText(key, "DatumIndex", "3").c_str());
    v.scale = mw::AtoF(QueryText(key, "scale", "1").c_str());
    v.c_lon = mw::AtoF(QueryText(key, "c_lon", "0").c_str());
    v.lat_origin = mw::AtoF(QueryText(key, "lat_origin", "0").c_str());
    v.fe = mw::AtoI(QueryText(key, "fe", "0").c_str());
    v.fn = mw::AtoI(QueryText(key, "fn", "0").c_str());
    RegCloseKey(key);
    return v;
}

}  // namespace

int CGeoReferenceData::SaveData(CString path) {
    if (!m_pParam) return 0;

    const mw::BlockParams p = mw::ReadBlock(m_nProjection, m_pParam);
    // Gauss-Kruger always works at scale 1, so that is what is stored; UTM
    // stores its zone in the scale's place.
    CString scale("1");
    if (m_nProjection == TransverseMercator)
        scale.Format("%lf", p.scale);
    else if (m_nProjection == UTM)
        scale.Format("%ld", static_cast<long>(p.UtmZone()));

    CString texts[7];
    texts[0].Format("%d", m_nProjection);
    texts[1].Format("%d", m_nDatum);
    texts[2] = scale;
    texts[3].Format("%lf", p.c_lon);
    texts[4].Format("%lf", p.lat_origin);
    texts[5].Format("%ld", static_cast<long>(p.fe));
    texts[6].Format("%ld", static_cast<long>(p.fn));
    static const char* const names[7] = {"ProjectionIndex", "DatumIndex", "scale", "c_lon",
                                         "lat_origin", "fe", "fn"};

    HKEY key = nullptr;
    if (RegCreateKeyA(HKEY_CURRENT_USER, path, &key) != ERROR_SUCCESS) {
        ShowSaveFailure();
        return 0;
    }
    for (int i = 0; i < 7; ++i) {
        // Stored as the characters alone, without a terminating NUL.
        if (RegSetValueExA(key, names[i], 0, REG_SZ, reinterpret_cast<const BYTE*>(texts[i].GetString()),
                           static_cast<DWORD>(texts[i].GetLength())) != ERROR_SUCCESS) {
            ShowSaveFailure();
            RegCloseKey(key);
            return 0;
        }
    }
    RegCloseKey(key);
    return 1;
}

void CGeoReferenceData::LoadData(CString path) {
    const Values v = ReadValues(path);
    if (!CreateGeoInfo(v.kind, v.datum)) return;  // a refused kind keeps the old block
    mw::WriteBlock(m_nProjection, {v.scale, v.c_lon, v.lat_origin, v.fe, v.fn}, m_pParam);
}
