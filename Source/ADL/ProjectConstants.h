#pragma once

#include <array>
#include <cstddef>

namespace velmora {

/// A constant of a project (AES31-3). Its id is its place in the table.
struct ProjectConstant {
  const char* section;
  const char* keyword;
  const char* displayName;  ///< for the diagnostic dump
};

inline constexpr auto kProjectConstants = std::to_array<ProjectConstant>({
    {"VERSION", "ADL_ID", "AES31_Version_ADL_ID"},
    {"VERSION", "ADL_UID", "AES31_Version_ADL_UID"},
    {"VERSION", "VER_ADL_VERSION", "AES31_Version_Ver_ADL_Version"},
    {"VERSION", "VER_CREATOR", "AES31_Version_Ver_Creator"},
    {"VERSION", "VER_CRTR", "AES31_Version_Ver_Crtr"},
    {"PROJECT", "PROJ_TITLE", "AES31_Proj_Title"},
    {"PROJECT", "PROJ_ORIGINATOR", "AES31_Proj_Originator"},
    {"PROJECT", "PROJ_CREATE_DATE", "AES31_Proj_Create_Date"},
    {"PROJECT", "PROJ_NOTES", "AES31_Proj_Notes"},
    {"PROJECT", "PROJ_CLIENT_DATA", "AES31_Proj_Client_Data"},
    {"SYSTEM", "SYS_SRC_OFFSET", "AES31_System_Src_Offset"},
    {"SYSTEM", "SYS_BIT_DEPTH", "AES31_System_Bit_Depth"},
    {"SYSTEM", "SYS_AUD_CODEC", "AES31_System_Aud_Codec"},
    {"SYSTEM", "SYS_XFADE_LEN", "AES31_System_XFade_Len"},
    {"SYSTEM", "SYS_GAIN", "AES31_System_Gain"},
    {"SEQUENCE", "SEQ_TITLE", "AES31_Sequence_Title"},
    {"SEQUENCE", "SEQ_DESCRIPT", "AES31_Sequence_Descript"},
    {"SEQUENCE", "SEQ_SAMPLE_RATE", "AES31_Sequence_Sample_Rate"},
    {"SEQUENCE", "SEQ_FRAME_RATE", "AES31_Sequence_Frame_Rate"},
    {"SEQUENCE", "SEQ_ADL_LEVEL", "AES31_Sequence_ADL_Level"},
    {"SEQUENCE", "SEQ_CLEAN", "AES31_Sequence_Clean"},
    {"SEQUENCE", "SEQ_SORT", "AES31_Sequence_Sort"},
    {"SEQUENCE", "SEQ_MULTICHAN", "AES31_Sequence_MultiChan"},
    {"SEQUENCE", "SEQ_DEST_START", "AES31_Sequence_Dest_Start"},
});

}  // namespace velmora
