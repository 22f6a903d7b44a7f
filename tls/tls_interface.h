/* The C interface of the run-time library "tls": the TLS protocol of a client and the check of the
 * server's certificate, without a socket. The caller carries the bytes: what came from the server
 * is put in, what is to be sent is taken out, whatever the step in between says.
 *
 *   TlsFunctionsOfModule   the functions below
 *
 * A session belongs to one thread at a time. Only TLS 1.2 and above is spoken, and a session whose
 * certificate is not in order never gets past its handshake.
 */
#ifndef TARVEX_TLS_TLS_INTERFACE_H
#define TARVEX_TLS_TLS_INTERFACE_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct TlsSession TlsSession;

/* What a step came to. */
enum {
  kTlsDone = 0,
  kTlsWantsBytes = 1, /* of the server */
  kTlsEnded = 2,      /* the server has said that nothing more comes */
  kTlsFailed = 3      /* see Failure */
};

/* Why a session failed; the detail is what the text of TlsFailure (tls_failure.h) has a place for.
 */
enum {
  kTlsFailureNone = 0,
  kTlsFailureAuthorityFile = 1,    /* cannot be used; detail: why */
  kTlsFailureWrongName = 2,        /* detail: the names that the certificate is for */
  kTlsFailureExpired = 3,          /* detail: the day, as 2026-01-31 */
  kTlsFailureNotYetValid = 4,      /* detail: the day from which it is valid */
  kTlsFailureSelfSigned = 5,       /* detail: its subject */
  kTlsFailureUnknownAuthority = 6, /* detail: who issued it */
  kTlsFailureCertificate = 7,      /* anything else about it; detail: what */
  kTlsFailureProtocol = 8          /* detail: what the protocol library says */
};

typedef struct TlsFunctions {
  /* `host` is the name or address that the certificate must be for; `authorityFile` names a PEM
   * file with the only authorities that are trusted, the system's when it is empty. Null when there
   * is no memory; a session that cannot be used fails at its first step. */
  TlsSession* (*Begin)(const char* host, const char* authorityFile);
  void (*End)(TlsSession* session);
  int (*Handshake)(TlsSession* session);
  /* kTlsDone with `got` > 0, or one of the other results. */
  int (*Read)(TlsSession* session, char* out, size_t capacity, size_t* got);
  /* kTlsDone when all of it was taken, kTlsFailed. */
  int (*Write)(TlsSession* session, const char* bytes, size_t count);
  /* Says that nothing more will be sent. */
  void (*SayGoodbye)(TlsSession* session);
  void (*PutReceived)(TlsSession* session, const char* bytes, size_t count);
  /* How many bytes were taken; 0 when nothing is to be sent. */
  size_t (*TakeToSend)(TlsSession* session, char* out, size_t capacity);
  /* Writes the detail as text that ends with a zero. */
  int (*Failure)(const TlsSession* session, char* detail, size_t size);
} TlsFunctions;

typedef const TlsFunctions* TlsFunctionsEntry(void);

#ifdef __cplusplus
}
#endif

#endif
