// The list of codes that belongs to a job (docs/formats/codes.md).
#pragma once

#include "app/workflow/job_session.h"
#include "core/codes/code_list.h"

namespace tarvex {

/// The file that `codes` in the job's settings names, else NAME.codes beside the coordinate file. A
/// file that was named and cannot be read and lines that are left out are told as warnings; without
/// a file the list is empty.
CodeList LoadJobCodes(JobSession& session);

}  // namespace tarvex
