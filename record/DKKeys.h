#pragma once
// The vocabulary of the data model: application names (record kinds), the shared
// lists of them, and the field keys of the records. Use these, never the literals.

#include "kplan/Export.h"

namespace dk {

// Application names.
inline constexpr const wchar_t* FAPP_GHDK = L"FAPP_GHDK";
inline constexpr const wchar_t* FAPP_GHDK_FG = L"FAPP_GHDK_FG";
inline constexpr const wchar_t* FAPP_GHDK_ZG = L"FAPP_GHDK_ZG";
inline constexpr const wchar_t* FAPP_GHDK_TX = L"FAPP_GHDK_TX";
inline constexpr const wchar_t* FAPP_GHDK_FJ = L"FAPP_GHDK_FJ";
inline constexpr const wchar_t* FAPP_XZDK = L"FAPP_XZDK";
inline constexpr const wchar_t* FAPP_GHDK_DX = L"FAPP_GHDK_DX";
inline constexpr const wchar_t* FAPP_XZDK_DX = L"FAPP_XZDK_DX";
inline constexpr const wchar_t* FAPP_DKTC = L"FAPP_DKTC";
inline constexpr const wchar_t* FAPP_GHJF = L"FAPP_GHJF";
inline constexpr const wchar_t* FAPP_GHDY = L"FAPP_GHDY";
inline constexpr const wchar_t* FAPP_GHFWX = L"FAPP_GHFWX";
inline constexpr const wchar_t* FAPP_PTGJ = L"FAPP_PTGJ";
inline constexpr const wchar_t* FAPP_JZLKX = L"FAPP_JZLKX";
inline constexpr const wchar_t* FAPP_TGGHDK = L"FAPP_TGGHDK";
inline constexpr const wchar_t* FAPP_TGXZDK = L"FAPP_TGXZDK";
inline constexpr const wchar_t* FAPP_CGTGDB = L"FAPP_CGTGDB";
inline constexpr const wchar_t* FAPP_KXORA = L"FAPP_KXORA";
inline constexpr const wchar_t* FAPP_KXYEL = L"FAPP_KXYEL";
inline constexpr const wchar_t* FAPP_KXGRE = L"FAPP_KXGRE";
inline constexpr const wchar_t* FAPP_KXBLU = L"FAPP_KXBLU";
inline constexpr const wchar_t* FAPP_KXPUR = L"FAPP_KXPUR";
inline constexpr const wchar_t* FAPP_KXBLA = L"FAPP_KXBLA";
inline constexpr const wchar_t* FAPP_KXROAD = L"FAPP_KXROAD";
inline constexpr const wchar_t* FAPP_ENTCODE = L"FAPP_ENTCODE";
// Older record generations, read only.
inline constexpr const wchar_t* APP_DKSX = L"地块属性";  // second generation
inline constexpr const wchar_t* APP_DKBJ = L"地块边界";  // first generation
inline constexpr const wchar_t* APP_XZYD = L"现状用地";  // first-generation current status

// Shared lists (comma-separated application names).
inline constexpr const wchar_t* LIST_GHDK = L"FAPP_GHDK,FAPP_GHDK_FG,FAPP_GHDK_ZG,FAPP_GHDK_TX";
inline constexpr const wchar_t* LIST_GHXZDK =
    L"FAPP_GHDK,FAPP_GHDK_FG,FAPP_GHDK_ZG,FAPP_GHDK_TX,FAPP_XZDK";
inline constexpr const wchar_t* LIST_DXDK = L"FAPP_GHDK_DX,FAPP_XZDK_DX";
inline constexpr const wchar_t* LIST_ALLDK =
    L"FAPP_GHDK,FAPP_GHDK_FG,FAPP_GHDK_ZG,FAPP_GHDK_TX,FAPP_XZDK,FAPP_GHDK_DX,FAPP_XZDK_DX";
inline constexpr const wchar_t* LIST_KGDK = L"FAPP_GHDK,FAPP_GHDK_KG,FAPP_XZDK,FAPP_XZDK_KG";
inline constexpr const wchar_t* LIST_ZGDK = L"FAPP_GHDK_ZG,FAPP_XZDK_ZG";

// Field keys: FS_ text, FD_ decimal, FN_ whole number, FDC_ computed total.
inline constexpr const wchar_t* FS_DKBH = L"FS_DKBH";
inline constexpr const wchar_t* FS_DKXZ = L"FS_DKXZ";
inline constexpr const wchar_t* FS_YDXZ = L"FS_YDXZ";
inline constexpr const wchar_t* FS_XZMC = L"FS_XZMC";
inline constexpr const wchar_t* FD_RJL = L"FD_RJL";
inline constexpr const wchar_t* FD_LDL = L"FD_LDL";
inline constexpr const wchar_t* FD_JZMD = L"FD_JZMD";
inline constexpr const wchar_t* FS_RKMD = L"FS_RKMD";
inline constexpr const wchar_t* FD_JZXG = L"FD_JZXG";
inline constexpr const wchar_t* FD_YDMJ = L"FD_YDMJ";
inline constexpr const wchar_t* FD_JZMJ = L"FD_JZMJ";
inline constexpr const wchar_t* FN_JDCW = L"FN_JDCW";
inline constexpr const wchar_t* FN_FJDCW = L"FN_FJDCW";
inline constexpr const wchar_t* FN_ZHS = L"FN_ZHS";
inline constexpr const wchar_t* FN_ZRKS = L"FN_ZRKS";
inline constexpr const wchar_t* FS_DLKKFX = L"FS_DLKKFX";
inline constexpr const wchar_t* FS_PTSS = L"FS_PTSS";
inline constexpr const wchar_t* FS_JRXZ = L"FS_JRXZ";
inline constexpr const wchar_t* FS_BZ = L"FS_BZ";
inline constexpr const wchar_t* FS_DKFL = L"FS_DKFL";
inline constexpr const wchar_t* FD_RJLXX = L"FD_RJLXX";
inline constexpr const wchar_t* FD_JZMDXX = L"FD_JZMDXX";
inline constexpr const wchar_t* FD_LDLSX = L"FD_LDLSX";
inline constexpr const wchar_t* FD_JRJZMJXX = L"FD_JRJZMJXX";
inline constexpr const wchar_t* FS_GGFWSS = L"FS_GGFWSS";
inline constexpr const wchar_t* FS_SZGYSS = L"FS_SZGYSS";
inline constexpr const wchar_t* FS_JTSS = L"FS_JTSS";
inline constexpr const wchar_t* FS_JRXZMS = L"FS_JRXZMS";
inline constexpr const wchar_t* FN_COLOR = L"FN_COLOR";
inline constexpr const wchar_t* FS_HHBL = L"FS_HHBL";
inline constexpr const wchar_t* FS_LSXX = L"FS_LSXX";
inline constexpr const wchar_t* FS_GHTYPE = L"FS_GHTYPE";
inline constexpr const wchar_t* FS_CGYDDL = L"FS_CGYDDL";
inline constexpr const wchar_t* FS_TGYDDL = L"FS_TGYDDL";
inline constexpr const wchar_t* FS_TGDL = L"FS_TGDL";
inline constexpr const wchar_t* FS_CGDL = L"FS_CGDL";
inline constexpr const wchar_t* FS_KGTH = L"FS_KGTH";
inline constexpr const wchar_t* FS_KGTM = L"FS_KGTM";
inline constexpr const wchar_t* FS_JZTLFG = L"FS_JZTLFG";
inline constexpr const wchar_t* FS_JZTHX = L"FS_JZTHX";
inline constexpr const wchar_t* FS_JZTBX = L"FS_JZTBX";
inline constexpr const wchar_t* FS_DLTLX = L"FS_DLTLX";
inline constexpr const wchar_t* FS_JZSC = L"FS_JZSC";
inline constexpr const wchar_t* FS_QTHJ = L"FS_QTHJ";
inline constexpr const wchar_t* FS_GHSJ = L"FS_GHSJ";
inline constexpr const wchar_t* FS_ZZSJ = L"FS_ZZSJ";
inline constexpr const wchar_t* FS_DJ = L"FS_DJ";
inline constexpr const wchar_t* FS_CQ = L"FS_CQ";
inline constexpr const wchar_t* FS_DKZT = L"FS_DKZT";
inline constexpr const wchar_t* FS_XMMC = L"FS_XMMC";
inline constexpr const wchar_t* FS_ENTCODE = L"FS_ENTCODE";
inline constexpr const wchar_t* FS_DXKJBH = L"FS_DXKJBH";
inline constexpr const wchar_t* FS_SJDKBH = L"FS_SJDKBH";
inline constexpr const wchar_t* FS_DXKJXZ = L"FS_DXKJXZ";
inline constexpr const wchar_t* FD_DXJZMJ = L"FD_DXJZMJ";
inline constexpr const wchar_t* FS_JZMJBL = L"FS_JZMJBL";
inline constexpr const wchar_t* FN_DXKJCS = L"FN_DXKJCS";
inline constexpr const wchar_t* FD_DXKJSD = L"FD_DXKJSD";
inline constexpr const wchar_t* FN_DXJDCW = L"FN_DXJDCW";
inline constexpr const wchar_t* FS_JFBH = L"FS_JFBH";
inline constexpr const wchar_t* FS_ZDGN = L"FS_ZDGN";
inline constexpr const wchar_t* FDC_ZJRK = L"FDC_ZJRK";
inline constexpr const wchar_t* FDC_ZYDMJ = L"FDC_ZYDMJ";
inline constexpr const wchar_t* FDC_ZJJZMJ = L"FDC_ZJJZMJ";
inline constexpr const wchar_t* FDC_GYLDMJ = L"FDC_GYLDMJ";
inline constexpr const wchar_t* FS_SJDX = L"FS_SJDX";
inline constexpr const wchar_t* FS_GXSJ = L"FS_GXSJ";
inline constexpr const wchar_t* FS_SJSJ = L"FS_SJSJ";
inline constexpr const wchar_t* FDC_SFSSYDMJ = L"FDC_SFSSYDMJ";
inline constexpr const wchar_t* FDC_SFSSJZMJ = L"FDC_SFSSJZMJ";
inline constexpr const wchar_t* FDC_GYCCYDMJ = L"FDC_GYCCYDMJ";
inline constexpr const wchar_t* FDC_GYCCJZMJ = L"FDC_GYCCJZMJ";
inline constexpr const wchar_t* FDC_JZJZMJ = L"FDC_JZJZMJ";
inline constexpr const wchar_t* FDC_JZYDMJ = L"FDC_JZYDMJ";
inline constexpr const wchar_t* FDC_BLJZMJ = L"FDC_BLJZMJ";
inline constexpr const wchar_t* FDC_XZJZMJ = L"FDC_XZJZMJ";
inline constexpr const wchar_t* FDC_BLJZJZMJ = L"FDC_BLJZJZMJ";
inline constexpr const wchar_t* FDC_XZJZJZMJ = L"FDC_XZJZJZMJ";
inline constexpr const wchar_t* FDC_JSYDMJ = L"FDC_JSYDMJ";
inline constexpr const wchar_t* FD_FJSYDMJ = L"FD_FJSYDMJ";
inline constexpr const wchar_t* FDC_JZRJL = L"FDC_JZRJL";
inline constexpr const wchar_t* FDC_SFSSRJL = L"FDC_SFSSRJL";
inline constexpr const wchar_t* FDC_GYCCRJL = L"FDC_GYCCRJL";
inline constexpr const wchar_t* FDC_BLYDMJ = L"FDC_BLYDMJ";
inline constexpr const wchar_t* FDC_XZYDMJ = L"FDC_XZYDMJ";
inline constexpr const wchar_t* FDC_BLJZYDMJ = L"FDC_BLJZYDMJ";
inline constexpr const wchar_t* FDC_XZJZYDMJ = L"FDC_XZJZYDMJ";
inline constexpr const wchar_t* FDC_PJRJL = L"FDC_PJRJL";
inline constexpr const wchar_t* FDC_PJLDL = L"FDC_PJLDL";
inline constexpr const wchar_t* FS_DYBH = L"FS_DYBH";
inline constexpr const wchar_t* FS_PZWH = L"FS_PZWH";
inline constexpr const wchar_t* FS_TYPE = L"FS_TYPE";
inline constexpr const wchar_t* FS_SSLX = L"FS_SSLX";
inline constexpr const wchar_t* FS_SZDKBH = L"FS_SZDKBH";
inline constexpr const wchar_t* FS_NAME = L"FS_NAME";
inline constexpr const wchar_t* FS_SSMC = L"FS_SSMC";
inline constexpr const wchar_t* FD_AREA = L"FD_AREA";
inline constexpr const wchar_t* FD_JZAREA = L"FD_JZAREA";
inline constexpr const wchar_t* FS_ZDTYPE = L"FS_ZDTYPE";
inline constexpr const wchar_t* FS_SSGM = L"FS_SSGM";
inline constexpr const wchar_t* FS_SSQK = L"FS_SSQK";
inline constexpr const wchar_t* FS_PTGJDM = L"FS_PTGJDM";
inline constexpr const wchar_t* FS_SSDJ = L"FS_SSDJ";
inline constexpr const wchar_t* FS_JZBH = L"FS_JZBH";
inline constexpr const wchar_t* FS_JZMC = L"FS_JZMC";
inline constexpr const wchar_t* FN_JZCS = L"FN_JZCS";
inline constexpr const wchar_t* FS_JZCG = L"FS_JZCG";
inline constexpr const wchar_t* FD_JZGD = L"FD_JZGD";
inline constexpr const wchar_t* FS_JZJGXS = L"FS_JZJGXS";
inline constexpr const wchar_t* FS_JZXZ = L"FS_JZXZ";
inline constexpr const wchar_t* FS_JZZT = L"FS_JZZT";
inline constexpr const wchar_t* FN_JZQSC = L"FN_JZQSC";
inline constexpr const wchar_t* FN_JZZZC = L"FN_JZZZC";
inline constexpr const wchar_t* FD_JZDBG = L"FD_JZDBG";
inline constexpr const wchar_t* FD_JZZDMJ = L"FD_JZZDMJ";
inline constexpr const wchar_t* FD_MJXS = L"FD_MJXS";

// Field labels: the Chinese names accepted in place of keys, and the labels of the
// older record generations.
inline constexpr const wchar_t* LBL_DKBH = L"地块编号";
inline constexpr const wchar_t* LBL_DKLB = L"地块类别";
inline constexpr const wchar_t* LBL_DKXZ = L"地块性质";
inline constexpr const wchar_t* LBL_XZMC = L"性质名称";
inline constexpr const wchar_t* LBL_RJL = L"容积率";
inline constexpr const wchar_t* LBL_LDL = L"绿地率";
inline constexpr const wchar_t* LBL_JZMD = L"建筑密度";
inline constexpr const wchar_t* LBL_RKMD = L"人口密度";
inline constexpr const wchar_t* LBL_JZXG = L"建筑限高";
inline constexpr const wchar_t* LBL_JZKZGD = L"建筑控制高度";
inline constexpr const wchar_t* LBL_YDMJ = L"用地面积";
inline constexpr const wchar_t* LBL_MJ = L"面积";  // writing only
inline constexpr const wchar_t* LBL_JZMJ = L"建筑面积";
inline constexpr const wchar_t* LBL_JDCW = L"机动车位";
inline constexpr const wchar_t* LBL_TCW = L"停车位";
inline constexpr const wchar_t* LBL_FJDCW = L"非机动车位";
inline constexpr const wchar_t* LBL_DKPJBG = L"地块平均标高";  // shares FN_FJDCW
inline constexpr const wchar_t* LBL_ZHS = L"总户数";
inline constexpr const wchar_t* LBL_HS = L"户数";
inline constexpr const wchar_t* LBL_ZRKS = L"总人口数";
inline constexpr const wchar_t* LBL_DKPD = L"地块坡度";  // shares FN_ZRKS
inline constexpr const wchar_t* LBL_DLKKFX = L"道路开口方向";
inline constexpr const wchar_t* LBL_PTGJ = L"配套公建";
inline constexpr const wchar_t* LBL_JRXZ = L"兼容性质";
inline constexpr const wchar_t* LBL_BZ = L"备注";

struct KPLAN_API LabelKey {
    const wchar_t* label;
    const wchar_t* key;
};

// Labels of current records and their keys, compared in this order.
inline constexpr LabelKey LABEL_KEYS[] = {
    {LBL_DKBH, FS_DKBH}, {LBL_DKLB, FS_DKXZ},   {LBL_DKXZ, FS_YDXZ},   {LBL_XZMC, FS_XZMC},
    {LBL_RJL, FD_RJL},   {LBL_LDL, FD_LDL},     {LBL_JZMD, FD_JZMD},   {LBL_RKMD, FS_RKMD},
    {LBL_JZXG, FD_JZXG}, {LBL_JZKZGD, FD_JZXG}, {LBL_YDMJ, FD_YDMJ},   {LBL_JZMJ, FD_JZMJ},
    {LBL_JDCW, FN_JDCW}, {LBL_TCW, FN_JDCW},    {LBL_FJDCW, FN_FJDCW}, {LBL_DKPJBG, FN_FJDCW},
    {LBL_ZHS, FN_ZHS},   {LBL_ZRKS, FN_ZRKS},   {LBL_DKPD, FN_ZRKS},   {LBL_DLKKFX, FS_DLKKFX},
    {LBL_PTGJ, FS_PTSS}, {LBL_JRXZ, FS_JRXZ},   {LBL_BZ, FS_BZ},
};

struct KPLAN_API OldLabels {
    const wchar_t* key;
    const wchar_t* first;   // "地块边界" lists
    const wchar_t* second;  // "地块属性" records
};

// What older generations call a key; other keys are stored under their own name.
inline constexpr OldLabels OLD_LABELS[] = {
    {FD_JZXG, LBL_JZKZGD, LBL_JZXG},   {FN_ZHS, LBL_HS, LBL_ZHS},
    {FN_FJDCW, LBL_DKPJBG, LBL_FJDCW}, {FN_ZRKS, LBL_DKPD, LBL_ZRKS},
    {FN_JDCW, LBL_TCW, LBL_JDCW},      {FS_DKBH, LBL_DKBH, LBL_DKBH},
    {FS_DKXZ, LBL_DKLB, LBL_DKLB},     {FD_RJL, LBL_RJL, LBL_RJL},
    {FD_LDL, LBL_LDL, LBL_LDL},        {FD_JZMD, LBL_JZMD, LBL_JZMD},
    {FS_RKMD, LBL_RKMD, LBL_RKMD},     {FS_DLKKFX, LBL_DLKKFX, LBL_DLKKFX},
    {FS_PTSS, LBL_PTGJ, LBL_PTGJ},     {FS_XZMC, LBL_XZMC, LBL_XZMC},
    {FS_JRXZ, LBL_JRXZ, LBL_JRXZ},
};

// The basic fields of a planned or current-status parcel, in their fixed order.
inline constexpr const wchar_t* BASIC_FIELDS[] = {
    FS_DKBH, FS_DKXZ, FS_XZMC,   FD_RJL,  FD_LDL,  FD_JZMD, FD_JZXG,   FN_JDCW, FN_FJDCW, FN_ZHS,
    FN_ZRKS, FS_RKMD, FS_DLKKFX, FS_PTSS, FD_YDMJ, FD_JZMJ, FD_DXJZMJ, FS_JRXZ, FS_HHBL,  FS_BZ,
};

// The fields of a first-generation parcel, in the fixed order of its bulk forms.
inline constexpr const wchar_t* LEGACY_FIELDS[] = {
    LBL_DKBH,   LBL_DKLB, LBL_XZMC,   LBL_RJL, LBL_LDL, LBL_JZMD, LBL_RKMD, LBL_JZKZGD,
    LBL_DKPJBG, LBL_DKPD, LBL_DLKKFX, LBL_TCW, LBL_HS,  LBL_JRXZ, LBL_PTGJ, LBL_YDMJ,
};

// Type labels written when a planned parcel record is created.
inline constexpr const wchar_t* TYPE_KGDK = L"控规地块";
inline constexpr const wchar_t* TYPE_FGDK = L"分规地块";
inline constexpr const wchar_t* TYPE_ZGDK = L"总规地块";
inline constexpr const wchar_t* TYPE_TXDK = L"城镇体系规划地块";
inline constexpr const wchar_t* TYPE_FJDK = L"风景园林规划地块";

// Values of the simple marker items.
inline constexpr const wchar_t* MARK_XZDK = L"现状地块=";
inline constexpr const wchar_t* MARK_GHDX = L"规划地下=";
inline constexpr const wchar_t* MARK_XZDX = L"现状地下=";

// Soft-link names from a parcel to its islands: written, and the older one, read only.
inline constexpr const wchar_t* LINK_ISLAND = L"DKBJ_LINK_NLK";
inline constexpr const wchar_t* LINK_ISLAND_OLD = L"地块内轮廓";

// Project parameters (yes/no) that steer the area rules.
inline constexpr const wchar_t* PARAM_CALC_AREA = L"核算时用地面积是否采用计算值[是(Y)/否(N)]";
inline constexpr const wchar_t* PARAM_CUT_BOUNDARY =
    L"有范围线统计出表时，与范围线相交地块自动裁剪计算面积[是(Y)/否(N)]";

// Entity types of the parcel scans.
inline constexpr const wchar_t* TYPES_PARCEL = L"*POLYLINE,CIRCLE";
inline constexpr const wchar_t* TYPES_LEGACY_PARCEL = L"POLYLINE,LWPOLYLINE,CIRCLE";
inline constexpr const wchar_t* TYPES_LEGACY_XZYD = L"LWPOLYLINE,POLYLINE";
// Applications of the first-generation scan.
inline constexpr const wchar_t* LIST_LEGACY_DK = L"地块边界,地块属性";

// Hatch, unit, block, building and red-line records.
inline constexpr const wchar_t* APP_DKTC_OLD = L"地块填充";  // older hatch record
inline constexpr const wchar_t* APP_DYSX = L"单元属性";      // older unit record
inline constexpr const wchar_t* APP_JFSX = L"街坊属性";      // older block record
inline constexpr const wchar_t* APP_GHHX = L"规划红线";      // red line, label/value list
inline constexpr const wchar_t* LIST_DKTC = L"FAPP_DKTC,地块填充";
inline constexpr const wchar_t* TYPES_HATCH = L"HATCH,SOLID";
inline constexpr const wchar_t* TYPE_GHDY = L"规划单元";
inline constexpr const wchar_t* TYPE_GHJF = L"规划街坊";
inline constexpr const wchar_t* TYPE_JZLKX = L"建筑轮廓线";
inline constexpr const wchar_t* LBL_GHLX = L"规划类型";  // the red line's kind
inline constexpr const wchar_t* GHHX_ALL = L"3";         // the kind that stands for every kind

// The fixed labels of the bulk forms, with the keys they are stored under.
inline constexpr LabelKey UNIT_FIELDS[] = {
    {L"单元编号", FS_DYBH},     {L"居住人口", FDC_ZJRK},
    {L"平均容积率", FDC_PJRJL}, {L"平均绿地率", FDC_PJLDL},
    {L"建筑容量", FDC_ZJJZMJ},  {L"配套设施", FS_PTSS},
    {L"批准文号", FS_PZWH},     {L"更新时间", FS_GXSJ},
    {L"设计时间", FS_SJSJ},     {LBL_BZ, FS_BZ},
};
inline constexpr LabelKey BLOCK_FIELDS[] = {
    {L"街坊编号", FS_JFBH}, {L"主导属性", FS_ZDGN}, {L"居住人口", FDC_ZJRK},
    {LBL_YDMJ, FDC_ZYDMJ},  {LBL_JZMJ, FDC_ZJJZMJ}, {L"绿地面积", FDC_GYLDMJ},
    {L"配套设施", FS_PTSS}, {L"设计导向", FS_SJDX}, {L"更新时间", FS_GXSJ},
    {L"设计时间", FS_SJSJ}, {LBL_BZ, FS_BZ},
};
inline constexpr LabelKey BUILDING_FIELDS[] = {
    {L"建筑编号", FS_JZBH}, {L"建筑名称", FS_JZMC},       {L"建筑层数", FN_JZCS},
    {L"建筑高度", FD_JZGD}, {L"建筑基底面积", FD_JZZDMJ}, {LBL_JZMJ, FD_JZMJ},
    {L"建筑性质", FS_JZXZ},
};

// The oldest planning-data format: attributes in a drawing dictionary, reached through
// a link list of the entity.
inline constexpr const wchar_t* QM_DKXX = L"QM_DKXX";
inline constexpr const wchar_t* QM_ENTLINK = L"QM_ENTLINK";
inline constexpr const wchar_t* QM_LINKLIST = L"LINKLIST";
inline constexpr const wchar_t* QM_TYPE_GHYD = L"规划用地";
inline constexpr const wchar_t* QM_LBL_DKXZ = L"地块性质";
inline constexpr const wchar_t* QM_YDLB = L"00_ydlb";  // class; falls back to "地块性质"
inline constexpr const wchar_t* QM_FIELDS[] = {
    L"00_dkbh",   L"00_ydfl", QM_YDLB,   L"00_dkbg", L"00_dkpd",   L"00_jzmd",
    L"00_jzkzgd", L"00_rjl",  L"00_ldl", L"00_rkmd", L"00_dlkkfx",
};

}  // namespace dk
