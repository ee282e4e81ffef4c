// printer-uri-supported, uri-security-supported and uri-authentication-supported that agree for every client.
// Copyright 2026 The rastertobrellian authors.
#pragma once

#include <pappl/pappl.h>

// 'UriSec_Agree()' - Make the uri-security-supported and
// uri-authentication-supported attributes among the attributes after
// `after` in ipp (all of them when after is nullptr) agree, value by
// value, with the URI schemes a client is given: ipps (TLS) for each true
// in `tls`, ipp for each false, in that order.  uri-security-supported
// becomes "tls" or "none" per URI; uri-authentication-supported keeps its
// first values ("basic" or "none"), cut to the count ("none" added for a
// missing one).  Both move to the end of ipp, so the attributes after
// `after` must be the last group.  count is 1 or 2.
void UriSec_Agree(ipp_t* ipp, ipp_attribute_t* after, const bool* tls, int count);

// 'UriSec_Active()' - Whether the attributes are made to agree (built
// against PAPPL 1.3, whose answer to a client on the loopback address
// they fix).  main() calls it, which also keeps the replacement in the
// executable.
bool UriSec_Active();
