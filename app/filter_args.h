// The filter's arguments and environment for a job, from its printer, accessories and card attributes.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

#include "app/accessories.h"
#include "app/filter_run.h"
#include "app/job_options.h"
#include "app/models.h"

// 'Args_ForJob()' - The printer's model and accessories, the job's card
// values (values a printer does not offer fall back to the defaults, with
// a job log line) and the filter's arguments and environment, as the
// spooler would start it for a document of contentType.  False when the
// printer's driver names no model, or when the job's custom areas do not
// parse (the job's message and reasons then say why).
bool Args_ForJob(pappl_job_t* job, pappl_pr_options_t* options, const char* contentType, const TAppModel** model,
                 TAccessories* acc, TCardValues* values, TFilterArgs* args);
