// The File Manager, over the POSIX file system.
//
// A folder is a pair (volume reference, directory id). There is one volume, reference -1; directory
// id 0 stands for the default directory. Ids are given out when a folder is first named and stay
// valid for the life of the program.
//
// Names are UTF-8 and name a thing within one folder, never a path. A name becomes a file name
// thus, and never leads out of its folder:
//   - '/', NUL, control characters (also U+0080 to U+009F and DEL) and bytes that are not UTF-8
//     become '%' and two capital hexadecimal digits a byte;
//   - the names "." and ".." get their first full stop as "%2E";
//   - a '%' becomes "%25" when what follows would otherwise read as one of these escapes.
// A file name read from a folder goes the same way back. Files whose names do not survive the way
// there and back (raw control characters, invalid UTF-8, needless escapes) are not listed, nor are
// hidden ones, whose names begin with a full stop.
//
// A file without any write permission is a locked one, for every user. Symbolic links are read
// through; for writing they count as locked. Only regular files open: no pipes, no devices.
//
// Calls are safe on any thread.
#pragma once

#include "MacTypes.h"

#include <string>
#include <string_view>

// What HOpen is to permit.
enum { fsRdPerm = 1, fsWrPerm = 2, fsRdWrPerm = 3 };

// Of ioFlAttrib.
enum { kFolderBit = 0x10 };

// For PBHGetVol. All of it is output.
struct WDPBRec {
  int16_t ioWDVRefNum; // volume of the default directory ...
  int32_t ioWDDirID;   // ... and its id
};
typedef WDPBRec* WDPBPtr;

// For PBHGetFInfo.
struct HFileParam {
  StringPtr ioNamePtr; // in: the name; out, with an index: the name found (256 bytes)
  int16_t ioVRefNum;   // in
  int16_t ioFDirIndex; // in: above 0, the file of that place in the folder; else look up the name
  int32_t ioDirID;     // in: the folder
};
struct HParamBlockRec {
  HFileParam fileParam;
};
typedef HParamBlockRec* HParmBlkPtr;

// For PBGetCatInfo, of a file or a folder.
struct HFileInfo {
  StringPtr ioNamePtr; // in
  int16_t ioVRefNum;   // in
  uint8_t ioFlAttrib;  // out: kFolderBit tells which of the two it is
  int32_t ioDirID;     // in: the folder to look in; out for a folder: the id of what was found
};
struct CInfoPBRec {
  HFileInfo hFileInfo;
};
typedef CInfoPBRec* CInfoPBPtr;

// `async` is ignored throughout: every call is done when it returns.

// The default directory: what TB_SetDefaultDirectory set, else the current one.
TB_EXPORT OSErr PBHGetVol(WDPBPtr block, Boolean async);
// Information on a file or folder, by name. fnfErr when there is none.
TB_EXPORT OSErr PBGetCatInfo(CInfoPBPtr block, Boolean async);
// Whether a file is there: by name, or by place (from 1) in the folder's listing of regular files,
// in alphabetical order regardless of case. fnfErr past the last one.
TB_EXPORT OSErr PBHGetFInfo(HParmBlkPtr block, Boolean async);

// Makes a folder in a folder. dupFNErr when the name is taken.
TB_EXPORT OSErr DirCreate(int16_t vRefNum, int32_t parentDirID, ConstStr255Param name,
                          int32_t* createdDirID);
// Makes an empty file. dupFNErr when the name is taken, even by a dangling link. Creator and type
// have nowhere to go.
TB_EXPORT OSErr HCreate(int16_t vRefNum, int32_t dirID, ConstStr255Param name, OSType creator,
                        OSType fileType);
// Opens a file. *refNum is above 0, or 0 after an error. permErr for writing to a locked file.
TB_EXPORT OSErr HOpen(int16_t vRefNum, int32_t dirID, ConstStr255Param name, int8_t permission,
                      int16_t* refNum);
// Removes a file; of a symbolic link, only the link. fLckdErr when it is locked.
TB_EXPORT OSErr HDelete(int16_t vRefNum, int32_t dirID, ConstStr255Param name);

// Reads *count bytes, less only at the end of the file or after an error. *count becomes the bytes
// read; eofErr when they are fewer than asked.
TB_EXPORT OSErr FSRead(int16_t refNum, int32_t* count, void* buffer);
// Writes *count bytes. *count becomes the bytes written. dskFulErr when there is no room.
TB_EXPORT OSErr FSWrite(int16_t refNum, int32_t* count, const void* buffer);
// Closes the file, whatever the result, which may tell of a delayed write that failed.
TB_EXPORT OSErr FSClose(int16_t refNum);
TB_EXPORT OSErr GetEOF(int16_t refNum, int32_t* length);

// --- For hosts, tools and tests ---

// What PBHGetVol reports from now on. dirNFErr when there is no such folder; an empty path goes
// back to the current directory.
TB_EXPORT OSErr TB_SetDefaultDirectory(std::string_view path);
// The absolute path of a name in a folder, or of the folder when name is null. Empty when there is
// no such folder or the name cannot be a file's.
TB_EXPORT std::string TB_PathOf(int16_t vRefNum, int32_t dirID, ConstStr255Param name);
