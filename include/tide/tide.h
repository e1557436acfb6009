/*
 * tide: the SDK of the reef family of Ethernet switch chips.
 * One include for an application.
 */
#ifndef TIDE_TIDE_H
#define TIDE_TIDE_H

#include <tide/acl.h>
#include <tide/base.h>
#include <tide/cli.h>
#include <tide/counter.h>
#include <tide/init.h>
#include <tide/l2.h>
#include <tide/macsec.h>
#include <tide/port.h>
#include <tide/qos.h>
#include <tide/serdes.h>
#include <tide/shr.h>
#include <tide/stub.h>
#include <tide/vlan.h>
#include <tide/property.h>
#include <tide/xsal.h>

#endif /* TIDE_TIDE_H */
