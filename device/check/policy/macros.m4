dnl The macros of the system's policy that this package uses, as far as the base policy knows what they allow.
define(`rw_dir_perms', `{ open getattr read search ioctl lock add_name remove_name write }')
define(`create_file_perms', `{ create rename setattr unlink open getattr read ioctl lock map write append }')
define(`hal_attribute', `
attribute hal_$1;
attribute hal_$1_client;
attribute hal_$1_server;
neverallow { hal_$1_server -halserverdomain } domain:process transition;
')
define(`hal_server_domain', `
typeattribute $1 halserverdomain, $2_server, $2;
')
define(`hal_client_domain', `
typeattribute $1 halclientdomain, $2_client;
')
define(`hal_attribute_hwservice', `
allow $1_client $2:hwservice_manager find;
allow $1_server $2:hwservice_manager { add find };
neverallow { domain -$1_client -$1_server } $2:hwservice_manager find;
neverallow { domain -$1_server } $2:hwservice_manager add;
binder_call($1_server, hwservicemanager)
binder_call($1_client, hwservicemanager)
')
define(`binder_call', `
allow $1 $2:binder { call transfer };
allow $2 $1:binder transfer;
')
define(`init_daemon_domain', `
allow init $1:process transition;
allow $1 $1_exec:file { entrypoint read open getattr map execute };
type_transition init $1_exec:process $1;
')
