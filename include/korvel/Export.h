#pragma once

#include <QtGlobal>

#if defined(KORVEL_AUDIT_VIEWER_BUILD)
#define KORVEL_AUDIT_VIEWER_EXPORT Q_DECL_EXPORT
#else
#define KORVEL_AUDIT_VIEWER_EXPORT Q_DECL_IMPORT
#endif
