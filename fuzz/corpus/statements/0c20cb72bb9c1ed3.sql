  SELECT COALESCE(p.nm_pessoa, '') INTO v_nome
  FROM tbclienteestacionamento c LEFT JOIN tbpessoa p ON p.cd_pessoa = c.cd_clienteestacionamento
  WHERE c.cd_empresausuariasistema = p_empresa AND c.cd_clienteestacionamento = p_cliente;
  IF NOT FOUND THEN
