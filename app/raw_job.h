// Raw job streams: a document that already is a Brellian job command stream.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

// 'Raw_PrintFile()' - PAPPL's print-file callback for
// application/vnd.brellian-job: the stream is read and checked as the
// job-stream inspector checks it, and sent to the device only when it is a
// complete, well-formed job, once per copy (each copy is the whole job
// again); otherwise the job fails with the reason.
bool Raw_PrintFile(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device);
