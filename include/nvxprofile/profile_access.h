// What a caller holds: an access object loads a profile of any generation and answers for it.
#pragma once

#include <nvxprofile/error.h>
#include <nvxprofile/export.h>
#include <nvxprofile/profile_data.h>

#include <cstdint>
#include <memory>

class CCurveData;
class CLutData;
class CNvxFile;

// Owns the loaded profile, from a successful Init until the next Init or its own end. Getters hand out pointers into
// the profile, which the caller never frees and does not write to. `error` is always a valid record; an operation fills
// it when it fails and leaves it alone when it succeeds. Without a profile the queries give null, false, 0 or -1 and
// leave `error` untouched, unless it is said otherwise.
//
// Queries of a loaded profile write to nothing that they share: any number of threads may ask one object at once,
// without a lock, each with an error record of its own, as long as nobody changes the profile meanwhile. Init is a
// change; so is asking for a payload or a child of the model (GetFormatData and the like), since whoever holds it may
// write to it, and walking a list by its cursor.
class NVX_EXPORT CProfileAccess {
 public:
  CProfileAccess();
  CProfileAccess(const CProfileAccess&) = delete;
  CProfileAccess& operator=(const CProfileAccess&) = delete;
  virtual ~CProfileAccess();

  // Loads the file. The profile held before is gone in any case; after a false there is none.
  bool Init(const char16_t* path, CError* error);

  CProfileData* GetProfileData() { return profile_.get(); }
  // The record of the loaded profile, which stays the profile's; null without one.
  _tagDeviceProfileInfo* GetProfileInfo();
  CProfileDataInfo* GetProfileInfoObject();
  // Format number of the loaded file (CProfileFile::GetMyFormat); 0 before the first successful Init.
  int GetProfileLoadFormat() const { return format_; }

  // Whether the profile has that route: 1, 2, 4, or any.
  bool IsICCRoot();
  bool IsGrayBalanceRoot();
  bool IsV3Route();
  bool IsSpecifiedRoute(std::uint32_t route);

  // Parts of the information record. False without a profile.
  bool GetOutputInfo(_tagOutputInfo* info);
  bool GetOutputResolution(std::uint32_t& scan, std::uint32_t& feed, std::uint32_t& third, std::uint32_t& fourth);
  bool GetRenderingResolution(std::uint32_t& scan, std::uint32_t& feed, std::uint32_t& expand);

  // Curves. A pointer to the samples of one curve, `size` their size in bytes, `dataType` 1 for samples of 8 bits and 2
  // for 16 bits. Queries answer from the entry's buffer: a payload that somebody has asked the model for, and may have
  // changed without DataToBuffer, is parsed anew. The pointer is valid as long as nobody changes the profile, and after
  // the entry's payload was asked for until the next curve query on the entry.
  // Null on failure: without a profile or the entry, size and dataType stay as they were; else they are 0, unless the
  // curve has an unknown data type: its size then stands.
  void* GetInkLimit(std::uint32_t inkColorCode, int& size, int& dataType, CError* error);
  void* GetLinearization(std::uint32_t inkColorCode, int& size, int& dataType, CError* error);
  void* GetGrayBalance(std::uint32_t inkColorCode, int& size, int& dataType, CError* error);
  void* GetLightInk(std::uint32_t inkColorCode, int& size, int& dataType, CError* error);
  // An extendInfo of 0 takes the ink's first curve, in GetVariableInkLimit that of extendInfo 5.
  void* GetMultiInkLimit(std::uint32_t inkColorCode, std::uint32_t extendInfo, int& size, int& dataType, CError* error);
  void* GetVariable(std::uint32_t inkColorCode, std::uint32_t extendInfo, int& size, int& dataType, CError* error);
  void* GetVariableInkLimit(std::uint32_t inkColorCode, std::uint32_t extendInfo, int& size, int& dataType,
                            CError* error);
  void* GetUCR(int& size, int& dataType, CError* error);
  void* GetBG(int& size, int& dataType, CError* error);

  // Writes the linearization looked up at each gray balance sample into `buffer`, which has room for `size` bytes; a
  // null buffer asks for size and type, which are those of the linearization. The two curves may differ: each is read
  // in its own sample width, a gray balance sample that is no index of the linearization takes its last sample, and
  // where the gray balance is the shorter curve its last sample stands for the missing ones. `buffer` needs no
  // alignment. False for what the two getters fail with, and, with `error` untouched, for samples of an unknown width;
  // size and dataType then describe the curve found last.
  bool GetMergeGrayBalance(std::uint32_t inkColorCode, std::uint8_t* buffer, int& size, int& dataType, CError* error);

  // The separation table: channel counts with the codes of the channels (`codes` may be null), and the samples, node
  // after node, one byte for each output channel. A null buffer asks for the size in bytes. -1 on failure, also without
  // a profile, always with a message.
  int GetChromaInputChannel(std::uint32_t* codes, CError* error);
  int GetChromaOutputChannel(std::uint32_t* codes, CError* error);
  int GetChromaData(std::uint8_t* buffer, std::uint32_t& gridCount, CError* error);

  // ICC profiles, `size` bytes, valid as long as the loaded profile; GetReplaceProfile falls back on the ordinary one.
  // Null, with `size` as it was, if there is none.
  std::uint8_t* GetIccProfile(int& size, CError* error);
  std::uint8_t* GetReplaceProfile(int& size, CError* error);

  // Codes of the information record; -1 without a profile.
  int GetColorsetCode();
  int GetInkTypeCode();
  int GetInkMakerCode();
  int GetInkVersion();
  int GetDotType();

  // Room for 33 characters; false for a profile that is not of the current generation. `error` is not used.
  bool GetCreateModule(char16_t* module, CError* error);

  // Device settings of the medium. On failure the results hold their start values: GetMediaCorrect leaves its value,
  // GetMediaFeedSpeed and GetUvModeRecommend give -1, the other single values 0.
  bool GetMediaCorrect(std::int32_t& value, CError* error);
  bool GetWaveParam(std::int32_t& value, CError* error);
  bool GetMediaFeedSpeed(std::int32_t& value, CError* error);
  bool GetWaveFormParam(std::int32_t& value, CError* error);
  bool GetUvModeRecommend(std::int32_t& value, CError* error);
  bool GetTopBlowerParam(std::int32_t& value, CError* error);
  bool GetFeedDirectionParam(std::int32_t& value, CError* error);
  // As many results as the block has values, up to 4; the others stay -1. A block of more than 4 fills none.
  bool GetHeaterTemperature(std::int32_t& first, std::int32_t& second, std::int32_t& third, std::int32_t& fourth,
                            CError* error);
  // `sizes` has room for 16 values; sizes and count stay as they were on failure.
  bool GetDotSize_SD(std::int32_t* sizes, std::int32_t& count, CError* error);
  // `*values` is the caller's array of 16 values; count is -1 on failure.
  bool GetPassDensity(std::int32_t& count, std::int32_t** values, CError* error);
  // The results stay as they were on failure.
  bool GetMaskParameters(std::int32_t& a, std::int32_t& b, std::int32_t& c, std::int32_t& d, std::int32_t& e,
                         std::int32_t& f, std::int32_t& g, std::int32_t& h, CError* error);

  // Mask download blocks. The counts say what room the arrays need; GetMaskParameter writes one value at most.
  bool GetMaskParamCount(std::uint32_t& valueCount, std::uint32_t& byteCount, CError* error);
  bool GetMaskParameter(std::uint32_t* values, std::uint8_t* bytes, CError* error);
  bool GetPrinterMaskParamCount(std::uint32_t& valueCount, std::uint32_t& byteCount, CError* error);
  bool GetPrinterMaskParameter(std::uint32_t* values, std::uint8_t* bytes, CError* error);
  bool IsSupportWeftVersion(CError* error);

  // Packs the parameter block and the patterns of one printing condition for the printer, in the form of
  // docs/formats/packed_mask.md, and gives its size in bytes; a null buffer asks for the size. 0 on failure; a pattern
  // that is missing leaves `error` as it was.
  std::uint32_t GetMaskParameterAndPatternBuffer(std::uint8_t* buffer, std::uint32_t pass,
                                                 std::uint32_t specialColorsetCode, std::uint32_t printMethod,
                                                 std::uint32_t layerColorCount, std::uint32_t* layerColors,
                                                 CError* error);

  // Special colours, by printing condition. The first two use no `error`; their result is -1 when they fail.
  bool GetSpecialColorRecommendDensity(std::int32_t& density, std::int32_t condition1, std::int32_t condition2,
                                       std::int32_t inkColorCode, CError* error);
  // Levels count from 0. The list holds `colorCount` colours in any order.
  bool GetSpecialColorRecommendLevel(std::int32_t& level, std::int32_t condition1, std::int32_t condition2,
                                     std::int32_t colorCount, std::int32_t* colors, CError* error);
  // Samples inside the profile, valid until its entry is parsed again. Size in bytes.
  void* GetSpecialColorVDCurve(std::int32_t& size, std::int32_t& dataType, std::int32_t extendInfo,
                               std::int32_t condition1, std::int32_t condition2, std::int32_t inkColorCode,
                               CError* error);
  void* GetSpecialColorVDCurveDataBuffer(CCurveData* curves, std::int32_t inkColorCode, std::int32_t extendInfo,
                                         std::int32_t& size, std::int32_t& dataType, CError* error);

  // UV lamp tables of signed 32-bit words, by printing condition. The count says what room the parameters need; of a
  // table that ends before it GetUVLamp500Parameter copies what there is and gives false.
  bool GetUVLamp500ParamCount(std::uint32_t& count, std::int32_t condition1, std::int32_t condition2,
                              std::int32_t condition3, std::int32_t condition4, CError* error);
  bool GetUVLamp500Parameter(std::int32_t* parameters, std::int32_t condition1, std::int32_t condition2,
                             std::int32_t condition3, std::int32_t condition4, CError* error);
  bool GetUVLamp500SplitCount(std::int32_t& count, std::int32_t condition1, std::int32_t condition2,
                              std::int32_t condition3, std::int32_t condition4, CError* error);
  bool GetUVLamp500SplitParamCount(std::int32_t& count, std::int32_t split, std::int32_t condition1,
                                   std::int32_t condition2, std::int32_t condition3, std::int32_t condition4,
                                   CError* error);

  // Calibrations. A code names one wherever it stands in the history; the index of GetCalibrationInfo counts positions
  // from 0. `name` has room for 21 characters, `codes` for as many as there are calibrations. No operation but the
  // curve getters uses `error`. The count is 0 and the newest code -1 on failure, the latter also after a success in a
  // history where no time is above 0; without a profile it stays as it was. The queries by position and of the newest
  // parse a calibration anew whose children somebody has asked for, so that pointers to them are invalid from then on.
  // The curve getters give what GetInkLimit gives; size and dataType stay as they were for a negative code and a
  // calibration or curve entry that is missing.
  bool GetCalibrationCount(std::int32_t& count, CError* error);
  bool GetCalibrationInfo(int index, int& code, int& value, std::int64_t& time, char16_t* name, CError* error);
  bool GetMultiCalibrationCode(std::int32_t* codes, CError* error);
  bool GetNewestCalibrationCode(std::int32_t& code, CError* error);
  void* GetCalibrationInkLimit(std::uint32_t inkColorCode, int code, int& size, int& dataType, CError* error);
  void* GetCalibrationLinearization(std::uint32_t inkColorCode, int code, int& size, int& dataType, CError* error);
  void* GetCalibrationGrayBalance(std::uint32_t inkColorCode, int code, int& size, int& dataType, CError* error);

 protected:
  // Init from an open stream.
  bool Load(CNvxFile& file, CError* error);
  // Answers for a profile that was made or loaded elsewhere, of that format number.
  void Serve(std::unique_ptr<CProfileData> profile, int format);

  // Completes the information record with what only the entries know; runs after each load.
  void SetupProfileInfoStructure();

  // What the curve queries ask.
  void* GetCurveDataBuffer(CProfileDataEntry* entry, std::uint32_t inkColorCode, std::uint32_t extendInfo, int& size,
                           int& dataType, CError* error);
  // out[i] = second[first[i]] for i below count. `second` has an element for every value in `first`.
  void MergeArrayBYTE(std::uint8_t* out, std::uint8_t* first, std::uint8_t* second, int count);
  void MergeArrayWORD(std::uint16_t* out, std::uint16_t* first, std::uint16_t* second, int count);
  void MergeArrayDWORD(std::uint32_t* out, std::uint32_t* first, std::uint32_t* second, int count);
  CLutData* GetChromaLutData(CError* error);
  // Number of values copied into `values`, which has room for 16, or -1.
  int GetMediaPropertyData(CProfileDataEntry* entry, std::uint32_t usedType, std::int32_t* values, CError* error);

 private:
  // The curve getters, which differ in the entry and in what they say when it is missing.
  void* GetCurveOfType(std::uint32_t usedType, const char16_t* missing, std::uint32_t inkColorCode,
                       std::uint32_t extendInfo, int& size, int& dataType, CError* error);
  void* GetCalibrationCurve(std::uint32_t usedType, std::uint32_t inkColorCode, std::uint32_t extendInfo, int code,
                            int& size, int& dataType, CError* error);

  std::unique_ptr<CProfileData> profile_;
  std::int32_t format_ = 0;
};
