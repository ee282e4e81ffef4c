// PDF documents: printed through the spooler's own PDF filters and ghostscript, then rastertobrellian.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

// 'Pdf_PrintFile()' - PAPPL MIME filter callback for application/pdf: the
// spooled document goes through pdftopdf and gstoraster (cups-filters, the
// chain a PPD queue runs, ghostscript as their child) into one run of
// rastertobrellian per copy, each process isolated as the filter is (the
// spooler's user when the server runs as root, no descriptor of the
// server).  The job stream reaches the device only when the whole chain
// ended well; otherwise the job fails with the first error line.
bool Pdf_PrintFile(pappl_job_t* job, pappl_device_t* device, void* data);

// 'Pdf_FilterDir()' - Where pdftopdf and gstoraster are:
// $BRELLIAN_CUPS_FILTER_DIR, else the spooler's filter directory.
const char* Pdf_FilterDir();
