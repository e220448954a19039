#include "WebHost/Certificates/CertificateGuard_linux.h"

#include "WebHost/Links/WebAddress.h"

#include <array>
#include <utility>

namespace quorvel {
namespace {

CertificateGuard& of(gpointer self) {
    return *static_cast<CertificateGuard*>(self);
}

CertificateFaults faultsIn(GTlsCertificateFlags flags) {
    const auto has = [&](GTlsCertificateFlags flag) { return (flags & flag) != 0; };
    return {.isUntrusted = has(G_TLS_CERTIFICATE_UNKNOWN_CA),
            .isOfOtherHost = has(G_TLS_CERTIFICATE_BAD_IDENTITY),
            .isNotYetValid = has(G_TLS_CERTIFICATE_NOT_ACTIVATED),
            .isExpired = has(G_TLS_CERTIFICATE_EXPIRED),
            .isRevoked = has(G_TLS_CERTIFICATE_REVOKED),
            .isInsecure = has(G_TLS_CERTIFICATE_INSECURE)};
}

std::string dateOf(GDateTime* time) {
    if (time == nullptr) {
        return {};
    }
    std::string text = takeText(g_date_time_format(time, "%Y-%m-%d"));
    g_date_time_unref(time);
    return text;
}

CertificateDetails detailsOf(GTlsCertificate* certificate) {
    GByteArray* bytes = nullptr;
    g_object_get(certificate, "certificate", &bytes, nullptr);
    CertificateDetails details{
        .subject = takeText(g_tls_certificate_get_subject_name(certificate)),
        .issuer = takeText(g_tls_certificate_get_issuer_name(certificate)),
        .validFrom = dateOf(g_tls_certificate_get_not_valid_before(certificate)),
        .validUntil = dateOf(g_tls_certificate_get_not_valid_after(certificate))};
    if (bytes != nullptr) {
        details.fingerprint =
            takeText(g_compute_checksum_for_data(G_CHECKSUM_SHA256, bytes->data, bytes->len));
        g_byte_array_unref(bytes);
    }
    return details;
}

} // namespace

CertificateGuard::CertificateGuard(WebKitWebView* view, HostWindow& window,
                                   CertificateExceptions& exceptions, ShowPage showPage)
    : view_(view),
      window_(window),
      exceptions_(exceptions),
      offer_(exceptions, actions(std::move(showPage))) {
    onSignal(view, "load-failed-with-tls-errors", failed, this);
}

CertificateGuard::~CertificateGuard() {
    g_signal_handlers_disconnect_by_data(view_, this);
    closeDialog();
}

CertificateOffer::Actions CertificateGuard::actions(ShowPage showPage) {
    return {
        .showPage = std::move(showPage),
        .showBar =
            [this](const std::string& text, const std::string& button,
                   std::function<void()> chosen) {
                window_.showOffer(text, button, std::move(chosen));
            },
        .hideBar = [this] { window_.hideOffer(); },
        .ask = [this](const std::string& heading, const std::string& text) { ask(heading, text); },
        .closeQuestion = [this] { closeDialog(); },
        .showMessage = [this](const std::string& text) { window_.showMessage(text); },
        .open = [this](const CertificateOffer::Refused& opened) { open(opened); }};
}

gboolean CertificateGuard::failed(WebKitWebView* /*view*/, char* address, GTlsCertificate* found,
                                  GTlsCertificateFlags flags, gpointer self) {
    CertificateGuard& guard = of(self);
    const CertificateFaults faults = faultsIn(flags);
    CertificateOffer::Refused refused{textOf(address), certificateReasons(faults), faults,
                                      detailsOf(found)};
    guard.certificate_ = keep(found);
    // One that fails although it was accepted must not be tried again and again.
    if (guard.exceptions_.accepts(hostOf(refused.address), refused.details.fingerprint) &&
        canBeExcepted(faults) && !guard.used_.contains(refused.key())) {
        guard.offer_.withdraw();
        guard.open(refused);
    } else {
        guard.isPageComing_ = true;
        guard.offer_.refuse(std::move(refused));
    }
    return TRUE;
}

void CertificateGuard::loadStarted() {
    if (!std::exchange(isPageComing_, false)) {
        offer_.withdraw();
    }
}

void CertificateGuard::closeDialog() {
    if (GtkWidget* const dialog = dialog_) {
        g_clear_weak_pointer(&dialog_);
        gtk_window_destroy(GTK_WINDOW(dialog));
    }
}

void CertificateGuard::ask(const std::string& heading, const std::string& text) {
    GtkWidget* const dialog = gtk_message_dialog_new(
        window_.widget(),
        static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT),
        GTK_MESSAGE_WARNING, GTK_BUTTONS_NONE, "%s", heading.c_str());
    gtk_window_set_title(GTK_WINDOW(dialog), heading.c_str());
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", text.c_str());
    gtk_dialog_add_button(GTK_DIALOG(dialog), "_Don’t Open", GTK_RESPONSE_CANCEL);
    gtk_dialog_add_button(GTK_DIALOG(dialog), "Open _Anyway", GTK_RESPONSE_OK);
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_CANCEL);
    onSignal(
        dialog, "response",
        [](GtkDialog*, int response, gpointer self) {
            of(self).closeDialog();
            of(self).offer_.answered(response == GTK_RESPONSE_OK);
        },
        this);
    g_set_weak_pointer(&dialog_, dialog);
    gtk_window_present(GTK_WINDOW(dialog));
}

void CertificateGuard::open(const CertificateOffer::Refused& opened) {
    const std::string host = hostOf(opened.address);
    used_.insert(opened.key());
    exceptions_.engineAccepts(host);
    webkit_network_session_allow_tls_certificate_for_host(
        webkit_web_view_get_network_session(view_), certificate_.get(), host.c_str());
    webkit_web_view_load_uri(view_, opened.address.c_str());
}

} // namespace quorvel
