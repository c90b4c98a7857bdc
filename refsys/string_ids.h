// Ids of the module's string table (ui/Mapwright.rc), for every layer of the
// module: refsys/, transform/ and coord/ look their texts up by these names,
// and ui/resource.h includes this file for the resource script. The numbers
// never change; hosts may hold them.
#ifndef MAPWRIGHT_REFSYS_STRING_IDS_H
#define MAPWRIGHT_REFSYS_STRING_IDS_H

// Display names of the projection kinds: kind k is IDS_KIND_GEOGRAPHIC + k - 1.
#define IDS_KIND_GEOGRAPHIC 832
#define IDS_KIND_UTM 833
#define IDS_KIND_GAUSS_KRUGER 834
#define IDS_KIND_TRANSVERSE_MERCATOR 835
#define IDS_KIND_MERCATOR 836
#define IDS_KIND_POLAR_STEREOGRAPHIC 837
#define IDS_KIND_CARTESIAN 838
// English names of the kinds, the same in every language: kind k is
// IDS_ENGLISH_GEOGRAPHIC + k - 1.
#define IDS_ENGLISH_GEOGRAPHIC 839
#define IDS_ENGLISH_UTM 840
#define IDS_ENGLISH_GAUSS_KRUGER 841
#define IDS_ENGLISH_TRANSVERSE_MERCATOR 842
#define IDS_ENGLISH_MERCATOR 843
#define IDS_ENGLISH_POLAR_STEREOGRAPHIC 844
#define IDS_ENGLISH_CARTESIAN 845
// Labels, prompts and units.
#define IDS_SELECT_INPUT_DATUM 846
#define IDS_SELECT_INPUT_COORDINATES 847
#define IDS_SELECT_OUTPUT_DATUM 848
#define IDS_SELECT_INPUT_PROJECTION 849
#define IDS_SELECT_OUTPUT_PROJECTION 850
#define IDS_LATITUDE 851
#define IDS_LONGITUDE 852
#define IDS_HEIGHT 853
#define IDS_NORTH_SOUTH 854
#define IDS_EAST_WEST 855
#define IDS_CENTRAL_MERIDIAN 856
#define IDS_LATITUDE_OF_ORIGIN 857
#define IDS_FALSE_EASTING 858
#define IDS_FALSE_NORTHING 859
#define IDS_LATITUDE_OF_TRUE_SCALE 860
#define IDS_SCALE_FACTOR 861
#define IDS_UTM_ZONE 862
#define IDS_SELECT_INPUT_PARAMETERS 863
#define IDS_SELECT_OUTPUT_PARAMETERS 864
#define IDS_MERCATOR_LATITUDE_RANGE 865
#define IDS_LONGITUDE_BELOW_POLE 866
#define IDS_METRES 867
#define IDS_INPUT_COORDINATES 868
#define IDS_OUTPUT_COORDINATES 869
#define IDS_INPUT_PROJECTION 870
#define IDS_OUTPUT_PROJECTION 871
#define IDS_INPUT_DATUM 872
#define IDS_OUTPUT_DATUM 873
#define IDS_INPUT_ELLIPSOID 874
#define IDS_OUTPUT_ELLIPSOID 875
#define IDS_CONVERT 876
#define IDS_PROPERTY_OF_PROJECTION 877
#define IDS_SELECT_PROJECTION 878
#define IDS_SELECT_DATUM 879
#define IDS_INPUT_PARAMETERS 880
#define IDS_LATITUDE_RANGE 881
#define IDS_X 882
#define IDS_Y 883
#define IDS_Z 884
#define IDS_ZONE 885
#define IDS_PROJECTION 888
#define IDS_DATUM 889
#define IDS_NORTH_OR_SOUTH 890
#define IDS_DECIMAL_FORMAT 891


#ifndef RC_INVOKED
namespace mw {

// The string ids of kind k's names (k in 1..7).
constexpr int KindDisplayNameId(int kind) { return IDS_KIND_GEOGRAPHIC - 1 + kind; }
constexpr int KindEnglishNameId(int kind) { return IDS_ENGLISH_GEOGRAPHIC - 1 + kind; }

}  // namespace mw
#endif

#endif
