// The library "tls": TLS by OpenSSL over two buffers in memory; the interface is described in
// tls/tls_interface.h.
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>
#include <memory>
#include <new>
#include <string>

#include "tls/tls_interface.h"

struct TlsSession {
  SSL_CTX* context = nullptr;
  SSL* tls = nullptr;
  BIO* received = nullptr;  // both owned by `tls`
  BIO* toSend = nullptr;
  int failure = kTlsFailureNone;
  std::string detail;
};

namespace {

constexpr std::size_t kLongestDetail = 200;

template <auto Free>
struct Freer {
  template <typename T>
  void operator()(T* object) const {
    Free(object);
  }
};
using Names = std::unique_ptr<GENERAL_NAMES, Freer<GENERAL_NAMES_free>>;

std::string LastErrorText() {
  const unsigned long error = ERR_peek_last_error();
  const char* const reason = ERR_reason_error_string(error);
  ERR_clear_error();
  return reason != nullptr ? reason : "no reason given";
}

int Fail(TlsSession& session, int failure, const std::string& detail) {
  if (session.failure == kTlsFailureNone) {
    session.failure = failure;
    session.detail = detail.substr(0, kLongestDetail);
  }
  return kTlsFailed;
}

std::string DayOf(const ASN1_TIME* time) {
  std::tm day{};
  if (time == nullptr || ASN1_TIME_to_tm(time, &day) != 1) return "an unknown day";
  std::array<char, 32> text;
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d", &day);
  return {text.data(), length};
}

// "caster.example", of a name's entry of this kind; empty when it has none.
std::string EntryOf(const X509_NAME* name, int kind) {
  const int at = X509_NAME_get_index_by_NID(name, kind, -1);
  if (at < 0) return {};
  const ASN1_STRING* const text = X509_NAME_ENTRY_get_data(X509_NAME_get_entry(name, at));
  return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(text)),
          static_cast<std::size_t>(ASN1_STRING_length(text))};
}

std::string CommonName(const X509_NAME* name) {
  std::string text = EntryOf(name, NID_commonName);
  if (text.empty()) text = EntryOf(name, NID_organizationName);
  return text.empty() ? "nobody who is named" : text;
}

std::string AddressText(const ASN1_OCTET_STRING* address) {
  const unsigned char* const bytes = ASN1_STRING_get0_data(address);
  std::string text;
  if (ASN1_STRING_length(address) != 4) return "an IPv6 address";
  for (int i = 0; i < 4; ++i) text += (i == 0 ? "" : ".") + std::to_string(bytes[i]);
  return text;
}

// Who the certificate is for: its alternative names, else its common name.
std::string NamesOf(const X509* certificate) {
  const Names names(static_cast<GENERAL_NAMES*>(
      X509_get_ext_d2i(certificate, NID_subject_alt_name, nullptr, nullptr)));
  std::string text;
  for (int i = 0; names != nullptr && i < sk_GENERAL_NAME_num(names.get()); ++i) {
    const GENERAL_NAME* const name = sk_GENERAL_NAME_value(names.get(), i);
    const std::string separator = text.empty() ? "" : ", ";
    if (name->type == GEN_DNS) {
      const ASN1_STRING* const dns = name->d.dNSName;
      text += separator + std::string(reinterpret_cast<const char*>(ASN1_STRING_get0_data(dns)),
                                      static_cast<std::size_t>(ASN1_STRING_length(dns)));
    } else if (name->type == GEN_IPADD) {
      text += separator + AddressText(name->d.iPAddress);
    }
  }
  return text.empty() ? CommonName(X509_get_subject_name(certificate)) : text;
}

// Called for each certificate of the chain; keeps the first complaint in words and changes nothing
// of the verdict.
int NoteComplaint(int accepted, X509_STORE_CTX* store) {
  if (accepted == 1) return accepted;
  const auto* const tls = static_cast<const SSL*>(
      X509_STORE_CTX_get_ex_data(store, SSL_get_ex_data_X509_STORE_CTX_idx()));
  auto& session = *static_cast<TlsSession*>(SSL_get_app_data(tls));
  const X509* const certificate = X509_STORE_CTX_get_current_cert(store);
  const int complaint = X509_STORE_CTX_get_error(store);
  if (certificate == nullptr) {
    (void)Fail(session, kTlsFailureCertificate, X509_verify_cert_error_string(complaint));
    return accepted;
  }
  switch (complaint) {
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
      (void)Fail(session, kTlsFailureWrongName, NamesOf(certificate));
      break;
    case X509_V_ERR_CERT_HAS_EXPIRED:
      (void)Fail(session, kTlsFailureExpired, DayOf(X509_get0_notAfter(certificate)));
      break;
    case X509_V_ERR_CERT_NOT_YET_VALID:
      (void)Fail(session, kTlsFailureNotYetValid, DayOf(X509_get0_notBefore(certificate)));
      break;
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
      (void)Fail(session, kTlsFailureSelfSigned, CommonName(X509_get_subject_name(certificate)));
      break;
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
      (void)Fail(session, kTlsFailureUnknownAuthority,
                 CommonName(X509_get_issuer_name(certificate)));
      break;
    default:
      (void)Fail(session, kTlsFailureCertificate, X509_verify_cert_error_string(complaint));
  }
  return accepted;
}

bool TrustAuthorities(TlsSession& session, const char* file) {
  const bool loaded = *file != '\0'
                          ? SSL_CTX_load_verify_locations(session.context, file, nullptr) == 1
                          : SSL_CTX_set_default_verify_paths(session.context) == 1;
  if (!loaded) (void)Fail(session, kTlsFailureAuthorityFile, LastErrorText());
  return loaded;
}

// An address is compared with the addresses of the certificate, a name with its names; only a name
// is told to the server.
bool ExpectHost(TlsSession& session, const char* host) {
  if (X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(session.tls), host) == 1) return true;
  ERR_clear_error();
  SSL_set_hostflags(session.tls, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
  return *host != '\0' && SSL_set1_host(session.tls, host) == 1 &&
         SSL_set_tlsext_host_name(session.tls, host) == 1;
}

bool Prepare(TlsSession& session, const char* host, const char* authorityFile) {
  session.context = SSL_CTX_new(TLS_client_method());
  if (session.context == nullptr ||
      SSL_CTX_set_min_proto_version(session.context, TLS1_2_VERSION) != 1) {
    return false;
  }
  (void)SSL_CTX_set_options(session.context, SSL_OP_NO_RENEGOTIATION);
  SSL_CTX_set_verify(session.context, SSL_VERIFY_PEER, NoteComplaint);
  if (!TrustAuthorities(session, authorityFile)) return false;
  session.tls = SSL_new(session.context);
  if (session.tls == nullptr) return false;
  SSL_set_app_data(session.tls, &session);
  session.received = BIO_new(BIO_s_mem());
  session.toSend = BIO_new(BIO_s_mem());
  if (session.received == nullptr || session.toSend == nullptr) {
    BIO_free(session.received);
    BIO_free(session.toSend);
    return false;
  }
  SSL_set_bio(session.tls, session.received, session.toSend);
  SSL_set_connect_state(session.tls);
  return ExpectHost(session, host);
}

// What a call that did not succeed came to.
int ResultOf(TlsSession& session, int returned) {
  switch (SSL_get_error(session.tls, returned)) {
    case SSL_ERROR_WANT_READ:
      return kTlsWantsBytes;
    case SSL_ERROR_ZERO_RETURN:
      return kTlsEnded;
    default:
      return Fail(session, kTlsFailureProtocol, LastErrorText());
  }
}

void End(TlsSession* session) {
  if (session == nullptr) return;
  SSL_free(session->tls);
  SSL_CTX_free(session->context);
  delete session;
}

TlsSession* Begin(const char* host, const char* authorityFile) {
  ERR_clear_error();
  auto* const session = new (std::nothrow) TlsSession;
  if (session != nullptr && !Prepare(*session, host, authorityFile)) {
    (void)Fail(*session, kTlsFailureProtocol, LastErrorText());
  }
  return session;
}

int Handshake(TlsSession* session) {
  if (session->failure != kTlsFailureNone) return kTlsFailed;
  ERR_clear_error();
  const int returned = SSL_do_handshake(session->tls);
  return returned == 1 ? kTlsDone : ResultOf(*session, returned);
}

int Read(TlsSession* session, char* out, std::size_t capacity, std::size_t* got) {
  *got = 0;
  if (session->failure != kTlsFailureNone) return kTlsFailed;
  ERR_clear_error();
  const int returned = SSL_read_ex(session->tls, out, capacity, got);
  return returned == 1 ? kTlsDone : ResultOf(*session, returned);
}

int Write(TlsSession* session, const char* bytes, std::size_t count) {
  if (session->failure != kTlsFailureNone) return kTlsFailed;
  ERR_clear_error();
  std::size_t written = 0;
  if (SSL_write_ex(session->tls, bytes, count, &written) == 1 && written == count) return kTlsDone;
  return Fail(*session, kTlsFailureProtocol, LastErrorText());
}

void SayGoodbye(TlsSession* session) {
  if (session->failure == kTlsFailureNone) (void)SSL_shutdown(session->tls);
  ERR_clear_error();
}

void PutReceived(TlsSession* session, const char* bytes, std::size_t count) {
  if (session->received == nullptr) return;
  std::size_t written = 0;
  (void)BIO_write_ex(session->received, bytes, count, &written);
}

std::size_t TakeToSend(TlsSession* session, char* out, std::size_t capacity) {
  std::size_t taken = 0;
  if (session->toSend == nullptr || BIO_ctrl_pending(session->toSend) == 0) return 0;
  return BIO_read_ex(session->toSend, out, capacity, &taken) == 1 ? taken : 0;
}

int Failure(const TlsSession* session, char* detail, std::size_t size) {
  if (size > 0) {
    const std::size_t length = std::min(session->detail.size(), size - 1);
    std::memcpy(detail, session->detail.data(), length);
    detail[length] = '\0';
  }
  return session->failure;
}

constexpr TlsFunctions kFunctions = {.Begin = Begin,
                                     .End = End,
                                     .Handshake = Handshake,
                                     .Read = Read,
                                     .Write = Write,
                                     .SayGoodbye = SayGoodbye,
                                     .PutReceived = PutReceived,
                                     .TakeToSend = TakeToSend,
                                     .Failure = Failure};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) TlsFunctionsEntry TlsFunctionsOfModule;

const TlsFunctions* TlsFunctionsOfModule(void) {
  return &kFunctions;
}

}  // extern "C"
