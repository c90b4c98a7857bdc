// The catalog operations of CGeoReferenceData. Every call reads the files
// afresh, one key at a time; scans run to the first missing section and do
// not stop at a match, so the last of duplicate entries wins.
#include "catalog.h"

#include <cstring>
#include <optional>

#include <mapwright/GeoReferenceData.h>
#include <mapwright/profile.h>

#include "numtext.h"

namespace mw {

namespace {
CString SectionName(int section) {
    CString name;
    name.Format("Format %d", section);
    return name;
}
}  // namespace

std::string ReadCatalogKey(const CString& file, int section, const char* key, const char* defaultText) {
    char buffer[1024];
    DWORD n = GetPrivateProfileStringA(SectionName(section), key, defaultText, buffer, sizeof buffer, file);
    return std::string(buffer, n < sizeof buffer ? n : sizeof buffer - 1);
}

void ReadCatalogName(const CString& file, int section, const char* key, char (&field)[50]) {
    GetPrivateProfileStringA(SectionName(section), key, kEndOfList, field, sizeof field, file);
}

bool WriteCatalogKey(const CString& file, int section, const char* key, const char* value) {
    return WritePrivateProfileStringA(SectionName(section), key, value, file) != 0;
}

}  // namespace mw

using mw::kEndOfList;
using mw::ReadCatalogKey;

namespace {

// The record's name field as text, bounded even if a host left it unterminated.
std::string FieldText(const char* field) { return std::string(field, strnlen(field, 50)); }

CString Decimal(int value) {
    CString text;
    text.Format("%d", value);
    return text;
}

CString Real(double value) {
    CString text;
    text.Format("%lf", value);
    return text;
}

// Looks an entry up by name: the index text of the last section whose name
// matches, if any. Returns the first free section number.
int FindByName(const CString& file, const char* nameKey, const std::string& name, const char* indexKey,
               std::optional<std::string>& indexText) {
    indexText.reset();
    int n = 0;
    for (;; ++n) {
        std::string text = ReadCatalogKey(file, n, nameKey, kEndOfList);
        if (text == kEndOfList) break;
        if (text == name) indexText = ReadCatalogKey(file, n, indexKey, kEndOfList);
    }
    return n;
}

const char* const kDatumValueKeys[6] = {"datumParam_0_0", "datumParam_0_1", "datumParam_0_2",
                                        "datumParam_1_0", "datumParam_1_1", "datumParam_1_2"};

}  // namespace

int CGeoReferenceData::CreateGeoInfo(int kind, int datumIndex) {
    m_nDatum = datumIndex >= 0 ? datumIndex : 1;
    // A negative index is searched as written, so it finds nothing.
    const std::string wanted = Decimal(datumIndex).GetString();

    int datumSection = -1;
    std::string ellipsoidText;
    for (int n = 0;; ++n) {
        std::string index = ReadCatalogKey(m_strDatumFile, n, "DatumIndex", kEndOfList);
        if (index == kEndOfList) break;
        if (index != wanted) continue;
        ellipsoidText = ReadCatalogKey(m_strDatumFile, n, "EllipsoidIndex", kEndOfList);
        datumSection = n;
        mw::ReadCatalogName(m_strDatumFile, n, "DatumName", szDatumName);
    }
    m_nEllipsoid = datumSection >= 0 ? mw::AtoI(ellipsoidText.c_str()) : 0;

    // The ellipsoid is matched by text: "5" does not find an "Index" of "05".
    int ellipsoidSection = -1;
    if (datumSection >= 0) {
        for (int k = 0;; ++k) {
            std::string index = ReadCatalogKey(m_strEllipsFile, k, "Index", kEndOfList);
            if (index == kEndOfList) break;
            if (index != ellipsoidText) continue;
            ellipsoidSection = k;
            mw::ReadCatalogName(m_strEllipsFile, k, "EllipsName", szEllipsName);
        }
    }
    if (ellipsoidSection >= 0) {
        m_dGeoInfo[0] = mw::AtoF(ReadCatalogKey(m_strEllipsFile, ellipsoidSection, "ellipsParam_0", "0").c_str());
        m_dGeoInfo[1] = mw::AtoF(ReadCatalogKey(m_strEllipsFile, ellipsoidSection, "ellipsParam_1", "0").c_str());
    } else {
        m_dGeoInfo[0] = 0.0;
        m_dGeoInfo[1] = 0.0;
    }

    for (int i = 0; i < 6; ++i) {
        m_nDatumValues[i] =
            datumSection >= 0
                ? mw::CutTo16(mw::AtoI(ReadCatalogKey(m_strDatumFile, datumSection, kDatumValueKeys[i], "0").c_str()))
                : 0;
    }

    // The catalog part is done whatever the kind; only the kind decides the result.
    return SetProjection(kind);
}

void CGeoReferenceData::SetDefault() { CreateGeoInfo(Geographic, 3); }

int CGeoReferenceData::GetDatumParam(DatumParamTag* tag) {
    if (!tag) return 0;
    const std::string name = FieldText(tag->szDatumName);

    bool found = false;
    int ellipsoidIndex = 0;
    int16_t values[6] = {};
    for (int n = 0;; ++n) {
        std::string text = ReadCatalogKey(m_strDatumFile, n, "DatumName", kEndOfList);
        if (text == kEndOfList) break;
        if (text != name) continue;
        ellipsoidIndex = mw::AtoI(ReadCatalogKey(m_strDatumFile, n, "EllipsoidIndex", kEndOfList).c_str());
        for (int i = 0; i < 6; ++i)
            values[i] = mw::CutTo16(mw::AtoI(ReadCatalogKey(m_strDatumFile, n, kDatumValueKeys[i], kEndOfList).c_str()));
        found = true;
    }
    if (!found) return 0;
    std::memcpy(tag->nDatumValues, values, sizeof values);

    // Here the index is matched as a number written back with "%d", so a
    // datum's "05" finds the ellipsoid whose "Index" is "5".
    const std::string wanted = Decimal(ellipsoidIndex).GetString();
    for (int k = 0;; ++k) {
        std::string index = ReadCatalogKey(m_strEllipsFile, k, "Index", kEndOfList);
        if (index == kEndOfList) break;
        if (index != wanted) continue;
        std::string ellipsName = ReadCatalogKey(m_strEllipsFile, k, "EllipsName", kEndOfList);
        std::memset(tag->szEllipsName, 0, sizeof tag->szEllipsName);
        std::memcpy(tag->szEllipsName, ellipsName.data(), ellipsName.size() < 49 ? ellipsName.size() : 49);
        tag->dSemiMajorKm = mw::AtoF(ReadCatalogKey(m_strEllipsFile, k, "ellipsParam_0", kEndOfList).c_str()) / 1000.0;
        tag->dInvFlattening = mw::AtoF(ReadCatalogKey(m_strEllipsFile, k, "ellipsParam_1", kEndOfList).c_str());
    }
    return 1;
}

int CGeoReferenceData::SetDatumAndEllipsIndex() {
    const std::string ellipsName = FieldText(szEllipsName);
    const std::string datumName = FieldText(szDatumName);
    if (ellipsName.empty() || datumName.empty()) return 0;

    // An entry found by name keeps its index; a new one takes the first free
    // section and the index after it.
    std::optional<std::string> indexText;
    const int n = FindByName(m_strEllipsFile, "EllipsName", ellipsName, "Index", indexText);
    if (indexText) {
        m_nEllipsoid = mw::AtoI(indexText->c_str());
    } else {
        mw::WriteCatalogKey(m_strEllipsFile, n, "Index", Decimal(n + 1));
        mw::WriteCatalogKey(m_strEllipsFile, n, "EllipsName", ellipsName.c_str());
        mw::WriteCatalogKey(m_strEllipsFile, n, "ellipsParam_0", Real(m_dGeoInfo[0]));
        mw::WriteCatalogKey(m_strEllipsFile, n, "ellipsParam_1", Real(m_dGeoInfo[1]));
        m_nEllipsoid = n + 1;
    }

    const int m = FindByName(m_strDatumFile, "DatumName", datumName, "DatumIndex", indexText);
    if (indexText) {
        m_nDatum = mw::AtoI(indexText->c_str());
    } else {
        mw::WriteCatalogKey(m_strDatumFile, m, "DatumName", datumName.c_str());
        for (int i = 0; i < 6; ++i) mw::WriteCatalogKey(m_strDatumFile, m, kDatumValueKeys[i], Decimal(m_nDatumValues[i]));
        mw::WriteCatalogKey(m_strDatumFile, m, "DatumIndex", Decimal(m + 1));
        mw::WriteCatalogKey(m_strDatumFile, m, "EllipsoidIndex", Decimal(m_nEllipsoid));
        m_nDatum = m + 1;
    }
    return 1;
}
