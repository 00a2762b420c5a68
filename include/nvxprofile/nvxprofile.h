// All published headers.
#pragma once

#include <nvxprofile/calibration.h>
#include <nvxprofile/calibration_history.h>
#include <nvxprofile/cursor_list.h>
#include <nvxprofile/curve.h>
#include <nvxprofile/curve_entry.h>
#include <nvxprofile/data_object.h>
#include <nvxprofile/diagnosis.h>
#include <nvxprofile/error.h>
#include <nvxprofile/export.h>
#include <nvxprofile/file.h>
#include <nvxprofile/icc_header.h>
#include <nvxprofile/icc_profile.h>
#include <nvxprofile/icm_entry.h>
#include <nvxprofile/input_profile.h>
#include <nvxprofile/mask.h>
#include <nvxprofile/mask_download.h>
#include <nvxprofile/profile_access.h>
#include <nvxprofile/profile_data.h>
#include <nvxprofile/profile_entry.h>
#include <nvxprofile/profile_file.h>
#include <nvxprofile/profile_file_icc.h>
#include <nvxprofile/profile_info.h>
#include <nvxprofile/system_time.h>
#include <nvxprofile/text_conversion.h>
